#pragma once

#include <InkoraKit/platform/NSError.h>

#include "platform/radios/bluez/Bus.h"

#include <string>

/// The errors of the radio, made from BlueZ's. The texts of `org.bluez.Error.Failed` are no part of
/// its interface, but the only place where 5.66 says what happened.
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
/// Another request of the same kind is under way, ours or another client's.
bool isInProgress(const BusError& error);
/// A link that could not be established; a bad moment on the air looks the same as an absent pen.
bool isConnectAborted(const BusError& error);
/// StopNotify when there was nothing to be stopped.
bool isNotSubscribed(const BusError& error);

}  // namespace InkoraKit::bluezErrors
