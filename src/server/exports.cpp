// The DLL's four exports: the class factories, whether the DLL may unload, and its entries in
// the registry. Unregistering removes exactly what registering wrote.
#include <olectl.h>

#include <string>

#include "frame/type_library.hpp"
#include "server/server.hpp"

namespace vrdppo::server {

namespace {

std::wstring progId(const ClassInfo& c) {
  return wideOf(std::string(kLibraryName) + "." + c.name);
}

LSTATUS setValue(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
  HKEY h = nullptr;
  LSTATUS rc = RegCreateKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                               KEY_SET_VALUE, nullptr, &h, nullptr);
  if (rc != ERROR_SUCCESS) return rc;
  rc = RegSetValueExW(h, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                      static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
  RegCloseKey(h);
  return rc;
}

LSTATUS deleteTree(const std::wstring& key) {
  const LSTATUS rc = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
  if (rc == ERROR_SUCCESS || rc == ERROR_FILE_NOT_FOUND) {
    // RegDeleteTree empties the key; the key itself goes with RegDeleteKey.
    const LSTATUS gone = RegDeleteKeyW(HKEY_CLASSES_ROOT, key.c_str());
    return gone == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : gone;
  }
  return rc;
}

HRESULT registerClass(const ClassInfo& c, const std::wstring& path, const std::wstring& libId) {
  const std::wstring clsid = wideOf(c.classId);
  const std::wstring key = L"CLSID\\" + clsid;
  const std::wstring prog = progId(c);
  const struct {
    std::wstring key;
    const wchar_t* name;
    std::wstring value;
  } entries[] = {
      {key, nullptr, prog},
      {key + L"\\InprocServer32", nullptr, path},
      {key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
      {key + L"\\ProgID", nullptr, prog},
      {key + L"\\TypeLib", nullptr, libId},
      {key + L"\\VERSION", nullptr, L"1.0"},
      {prog, nullptr, prog},
      {prog + L"\\CLSID", nullptr, clsid},
  };
  for (const auto& e : entries) {
    const LSTATUS rc = setValue(e.key, e.name, e.value);
    if (rc != ERROR_SUCCESS) return HRESULT_FROM_WIN32(rc);
  }
  return S_OK;
}

HRESULT unregisterClass(const ClassInfo& c) {
  LSTATUS rc = deleteTree(L"CLSID\\" + wideOf(c.classId));
  const LSTATUS rc2 = deleteTree(progId(c));
  if (rc == ERROR_SUCCESS) rc = rc2;
  return rc == ERROR_SUCCESS ? S_OK : HRESULT_FROM_WIN32(rc);
}

HRESULT registerAll() {
  const std::wstring path = modulePath();
  // The type library, and with it its interfaces, from the DLL's own resource.
  ITypeLib* library = nullptr;
  HRESULT hr = LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library);
  if (FAILED(hr)) return hr;
  hr = RegisterTypeLib(library, const_cast<LPOLESTR>(path.c_str()), nullptr);
  library->Release();
  if (FAILED(hr)) return SELFREG_E_TYPELIB;
  const std::wstring libId = wideOf(libraryId());
  for (const ServedClass& c : servedClasses()) {
    if (FAILED(registerClass(*c.info, path, libId))) return SELFREG_E_CLASS;
  }
  return S_OK;
}

HRESULT unregisterAll() {
  HRESULT result = S_OK;
  for (const ServedClass& c : servedClasses()) {
    if (FAILED(unregisterClass(*c.info))) result = SELFREG_E_CLASS;
  }
  const HRESULT hr = UnRegisterTypeLib(guidOf(libraryId()), kLibraryMajor, kLibraryMinor,
                                       LOCALE_NEUTRAL, SYS_WIN64);
  // A type library that is not registered is already gone.
  if (FAILED(hr) && hr != TYPE_E_REGISTRYACCESS && SUCCEEDED(result)) result = SELFREG_E_TYPELIB;
  return result;
}

template <class F>
HRESULT guarded(F&& body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

}  // namespace

}  // namespace vrdppo::server

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    vrdppo::server::setModule(instance);
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, LPVOID* out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  const vrdppo::server::ServedClass* c = vrdppo::server::servedClass(classId);
  if (c == nullptr) return CLASS_E_CLASSNOTAVAILABLE;
  return vrdppo::server::getClassFactory(*c, iid, out);
}

STDAPI DllCanUnloadNow() {
  return vrdppo::server::canUnload() ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
  return vrdppo::server::guarded([] { return vrdppo::server::registerAll(); });
}

STDAPI DllUnregisterServer() {
  return vrdppo::server::guarded([] { return vrdppo::server::unregisterAll(); });
}

}  // extern "C"
