// The in-process class server: module state, the classes as the platform sees them, and the
// conversions between the platform's VARIANT and the library's Variant. Windows only.
#pragma once

// windows.h first: the other platform headers take their basic types from it.
#include <windows.h>

#include <cguid.h>
#include <oaidl.h>
#include <ole2.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "vrdppo/error.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/variant.hpp"

namespace vrdppo::server {

// One class as the server hands it out: its identifiers and its dual vtable, whose slot k after
// those of IDispatch calls public member k.
struct ServedClass {
  const ClassInfo* info = nullptr;
  GUID classId{};
  GUID interfaceId{};
  std::vector<const MemberInfo*> members;  // public ones, in the interface's order
  std::vector<void (*)()> vtable;
};

const std::vector<ServedClass>& servedClasses();
const ServedClass* servedClass(REFCLSID classId) noexcept;

GUID guidOf(std::string_view text);
std::wstring wideOf(std::string_view utf8);

// The DLL itself: its handle, its path, and what keeps it loaded.
HMODULE module() noexcept;
void setModule(HMODULE module) noexcept;
std::wstring modulePath();
void objectCreated() noexcept;
void objectDestroyed() noexcept;
void lockServer(bool lock) noexcept;
bool canUnload() noexcept;

// The type library in the DLL's own resource, loaded once.
HRESULT typeLibrary(ITypeLib** out) noexcept;

HRESULT createObject(const ServedClass& c, REFIID iid, void** out) noexcept;
HRESULT getClassFactory(const ServedClass& c, REFIID iid, void** out) noexcept;
// Installs the trace file that VRDPPO_TRACE_FILE names, once, before the first object is made.
void startTraceFile() noexcept;

// Conversions. fromVariant follows a by-reference VARIANT to what it holds and raises the type
// mismatch for what no argument can be; a VT_ERROR of DISP_E_PARAMNOTFOUND is a missing argument.
Variant fromVariant(const VARIANT& v);
void toVariant(const Variant& v, VARIANT* out);  // out is uninitialised
BSTR toBstr(std::u16string_view s);
std::u16string fromBstr(BSTR b);

// A library error as the platform carries it: runtime errors in the control facility
// (0x800A0000 + n), provider failures as their own HRESULT.
HRESULT hresultOf(std::int32_t number) noexcept;
void fillException(const Error& e, EXCEPINFO* info) noexcept;
// The same for a call through the vtable: the thread's error object, and the HRESULT to return.
HRESULT raiseErrorInfo(const Error& e, REFIID iid) noexcept;

// Runs a body and turns whatever it raises into the library's error.
template <class F>
void translated(F&& body) {
  try {
    body();
  } catch (const Error&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw Error::runtime(err::kOutOfMemory);
  } catch (const std::exception& e) {
    throw Error(err::kInvalidCall, e.what());
  }
}

}  // namespace vrdppo::server
