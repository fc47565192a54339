// The interface description of the class server, written from the registry so that no class is
// described twice: one library, and per class a dual interface and the class that implements it.
#pragma once

#include <string>

namespace vrdppo {

inline constexpr const char* kLibraryName = "vrdppo";
inline constexpr const char* kLibraryHelp = "VRD Production Persistence Object";
inline constexpr unsigned kLibraryMajor = 1;
inline constexpr unsigned kLibraryMinor = 0;

// The type library's GUID, stable across builds like those of the classes.
std::string libraryId();

// The IDL text of the whole library, for the platform's IDL compiler.
std::string typeLibraryIdl();

}  // namespace vrdppo
