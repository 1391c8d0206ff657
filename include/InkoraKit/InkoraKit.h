#pragma once

/// @file
/// All of the kit that a host needs to talk to a pen, and JSON. The virtual radio and pen, for
/// demos and tests, are under <InkoraKit/virtual/>.

#include <InkoraKit/InkoraConstants.h>
#include <InkoraKit/InkoraErrorCodes.h>
#include <InkoraKit/InkoraErrorDomain.h>
#include <InkoraKit/InkoraGlobalData.h>
#include <InkoraKit/InkoraHandler.h>
#include <InkoraKit/InkoraManager.h>
#include <InkoraKit/InkoraProtocols.h>
#include <InkoraKit/JSON.h>
#include <InkoraKit/ManagerState.h>
#include <InkoraKit/Version.h>
#include <InkoraKit/platform/NSError.h>
#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/platform/RunLoopSource.h>
#include <InkoraKit/platform/UIColor.h>
