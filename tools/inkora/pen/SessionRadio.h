#pragma once

#include <InkoraKit/virtual/RadioTrace.h>
#include <InkoraKit/virtual/ReplayRadio.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include <memory>

namespace InkoraTool {

/// What was put in the place of the system's radio, and what records it. Each lasts as long as it
/// is kept here; null for what was not asked for.
struct SessionRadio {
    std::shared_ptr<InkoraKit::VirtualRadio> simulated = {};
    std::shared_ptr<InkoraKit::ReplayRadio> replayed = {};
    std::shared_ptr<InkoraKit::RadioTrace> trace = {};
};

}  // namespace InkoraTool
