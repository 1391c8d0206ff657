#pragma once

#include <InkoraKit/c/Export.h>

// What the headers in C++ ask of a compiler, said before it stumbles over one of them.
#if defined(_MSVC_LANG) ? _MSVC_LANG <= 201703L : __cplusplus <= 201703L
#error "InkoraKit's headers need C++20 (-std=c++20, /std:c++20). InkoraKit/c/inkorakit.h does not."
#elif !defined(__cpp_rtti)
#error "InkoraKit's headers need RTTI (no -fno-rtti, /GR-). InkoraKit/c/inkorakit.h does not."
#endif
