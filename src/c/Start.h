#pragma once

namespace InkoraKit {

// Whether a C host has started the kit, which from then on stays with its radio and its clock.
bool wasStarted();

}  // namespace InkoraKit
