#include <InkoraKit/Version.h>

extern "C" {

const double InkoraKitVersionNumber = 1.0;
const char InkoraKitVersionString[] = "@(#)PROGRAM:InkoraKit  PROJECT:InkoraKit-1\n";
}
