// Loading a library of this build at run time; one half per target.
#ifndef TESTS_SUPPORT_SHARED_LIBRARY_H
#define TESTS_SUPPORT_SHARED_LIBRARY_H

#include <string>

// `name` stands beside the program, without the system's extension. Null on failure.
void* OpenLibraryBeside(const std::string& name);
void* FindFunction(void* library, const char* name);
void CloseLibrary(void* library);
// Whether `code` lies in a library or program that is loaded.
bool IsLoaded(void* code);

#endif
