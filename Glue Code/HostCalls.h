// The host's services as plain functions.
//
// Each function finds its service on first use, keeps the address, and forwards the call. A missing
// service is asked for again on every call; until it is there the call does nothing and gives nil
// or 0.
#pragma once

#include "HostInterface.h"

// A host may call with a stack that is aligned to 4 bytes only, where our 32-bit compilers expect
// 16. Every function whose address the host gets is marked with this.
#if defined(__i386__)
#define LMX_HOST_CALLABLE __attribute__((force_align_arg_pointer))
#else
#define LMX_HOST_CALLABLE
#endif

/// The host's resolver: nil until REALPluginMain stores it, then never changed. No service may be
/// called before.
extern REALResolver gResolver;

/// A new host text of `length` bytes, or nil. The caller owns it.
REALstringStruct* REALBuildString(const char* text, int length);

/// Gives up one reference to the object.
void REALUnlockObject(REALobjectStruct* object);

/// Locks the picture's pixels and tells where they are. When the service is missing the description
/// stays as it was.
void REALLockPictureDescription(REALpictureStruct* picture, REALpictureDescription* description);

/// Ends one lock of REALLockPictureDescription.
void REALUnlockPictureDescription(REALpictureStruct* picture);

/// The host's version, for example 2011.04; 0 when the host does not tell.
double REALGetRBVersion();

/// Lets the host handle events. An exception of the host may pass.
void REALYieldToRB();

/// The host's class of that name, or nil.
REALclassRefStruct* REALGetClassRef(const char* name);

/// A new object of the class, without its constructor run, or nil. The caller owns its one
/// reference. A nil class gives nil; the host is not asked.
REALobjectStruct* REALnewInstance(REALclassRefStruct* classRef);

/// Makes the module's methods available to host programs. The record must stay where it is.
void REALRegisterModule(REALmoduleDefinition* module);

/// The address of the object's method with that declaration, or nil.
void* REALLoadObjectMethod(REALobjectStruct* object, const char* declaration);

/// Shows the text to the user.
void REALMessageBox(REALstringStruct* text);
