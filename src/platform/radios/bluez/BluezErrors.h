#pragma once

#include <InkoraKit/platform/NSError.h>

#include "platform/bus/Bus.h"

#include <string>

/// The errors of the radio, made from BlueZ's. The texts of `org.bluez.Error.Failed` are no part of
/// its interface, but the only place where 5.66 says what happened.
namespace InkoraKit {

/// What a Connect that failed tells about the next one.
enum class ConnectFailure {
    none,       // there is a link already
    transient,  // a bad moment; an absent pen looks the same
    busy,       // something else goes on, and ends by itself
    permanent,
};

}  // namespace InkoraKit

namespace InkoraKit::bluezErrors {

NSError connectionFailed(const std::string& text);
NSError peripheralDisconnected();
NSError rssiUnavailable(const std::string& text);

/// What BlueZ said, its error's name where it said nothing.
std::string textOf(const BusError& error);

/// Of a read or a subscription: a code of the attribute protocol where there is one.
NSError attributeError(const BusError& error);

bool isAccessDenied(const BusError& error);
/// Nobody on the bus has the name that was called.
bool isNobody(const BusError& error);
ConnectFailure connectFailureOf(const BusError& error);
/// StopNotify when there was nothing to be stopped.
bool isNotSubscribed(const BusError& error);

}  // namespace InkoraKit::bluezErrors
