// What keeps the DLL loaded, its type library, and the class factories.
#include <atomic>
#include <mutex>

#include "server/server.hpp"

namespace vrdppo::server {

namespace {

HMODULE theModule = nullptr;
std::atomic<long> liveObjects{0};
std::atomic<long> serverLocks{0};

class Factory final : public IClassFactory {
 public:
  explicit Factory(const ServedClass& c) : class_(c) { objectCreated(); }
  ~Factory() { objectDestroyed(); }
  Factory(const Factory&) = delete;
  Factory& operator=(const Factory&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, IID_IClassFactory)) {
      return E_NOINTERFACE;
    }
    *out = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --refs_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    if (out != nullptr) *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return createObject(class_, iid, out);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    lockServer(lock != FALSE);
    return S_OK;
  }

 private:
  std::atomic<ULONG> refs_{1};
  const ServedClass& class_;
};

}  // namespace

HMODULE module() noexcept {
  return theModule;
}
void setModule(HMODULE m) noexcept {
  theModule = m;
}

std::wstring modulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD n = GetModuleFileNameW(theModule, path.data(), static_cast<DWORD>(path.size()));
    if (n == 0) throw Error(err::kInvalidCall, "the server cannot find its own file");
    if (n < path.size()) {
      path.resize(n);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

void objectCreated() noexcept {
  ++liveObjects;
}
void objectDestroyed() noexcept {
  --liveObjects;
}
void lockServer(bool lock) noexcept {
  if (lock) {
    ++serverLocks;
  } else {
    --serverLocks;
  }
}
bool canUnload() noexcept {
  return liveObjects == 0 && serverLocks == 0;
}

HRESULT typeLibrary(ITypeLib** out) noexcept {
  // Loaded once and kept: the type library is free-threaded, and every apartment may share it.
  static std::mutex mutex;
  static ITypeLib* library = nullptr;
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  std::lock_guard lock(mutex);
  if (library == nullptr) {
    try {
      const HRESULT hr = LoadTypeLibEx(modulePath().c_str(), REGKIND_NONE, &library);
      if (FAILED(hr)) return hr;
    } catch (...) {
      return TYPE_E_CANTLOADLIBRARY;
    }
  }
  *out = library;
  return S_OK;
}

HRESULT getClassFactory(const ServedClass& c, REFIID iid, void** out) noexcept {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  startTraceFile();
  Factory* f = nullptr;
  try {
    f = new Factory(c);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
  const HRESULT hr = f->QueryInterface(iid, out);
  f->Release();
  return hr;
}

}  // namespace vrdppo::server
