// An early-bound client of the class server: loads the registered type library, holds it against
// what the registry says (vrdppo_idl's expectations), and calls a class through its vtable and
// through IDispatch with what late-bound callers really pass.
// Usage: typelib_client.exe EXPECTATIONS STORE
// windows.h first, and initguid.h before the GUIDs of the generated header, which it defines.
#include <windows.h>

#include <initguid.h>

#include <cguid.h>
#include <oaidl.h>
#include <ole2.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "vrdppo_idl.h"

namespace {

int checks = 0;
int failures = 0;

void check(bool ok, const std::string& what) {
  ++checks;
  if (!ok) {
    ++failures;
    std::printf("FAIL: %s\n", what.c_str());
  }
}

std::string narrow(const wchar_t* w) {
  std::string out;
  for (; w != nullptr && *w != 0; ++w) out += static_cast<char>(*w < 128 ? *w : '?');
  return out;
}

std::wstring wide(const std::string& s) {
  return std::wstring(s.begin(), s.end());
}

GUID guidOf(const std::string& text) {
  GUID g{};
  std::wstring w = wide(text);
  CLSIDFromString(w.c_str(), &g);
  return g;
}

struct Member {
  std::string name;
  long dispatchId;
  int args;
};
struct Class {
  std::string name;
  GUID classId, interfaceId;
  std::vector<Member> members;
  int stateChars;
};

// A BSTR that frees itself.
struct Bstr {
  BSTR b = nullptr;
  Bstr() = default;
  explicit Bstr(const std::wstring& s)
      : b(SysAllocStringLen(s.data(), static_cast<UINT>(s.size()))) {}
  ~Bstr() { SysFreeString(b); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  UINT size() const { return SysStringLen(b); }
};

void checkClass(ITypeLib* lib, const Class& c) {
  ITypeInfo* info = nullptr;
  check(SUCCEEDED(lib->GetTypeInfoOfGuid(c.interfaceId, &info)), c.name + ": interface found");
  if (info == nullptr) return;
  TYPEATTR* attr = nullptr;
  info->GetTypeAttr(&attr);
  const WORD wanted = TYPEFLAG_FHIDDEN | TYPEFLAG_FDUAL | TYPEFLAG_FNONEXTENSIBLE;
  check((attr->wTypeFlags & wanted) == wanted, c.name + ": hidden, dual, non-extensible");
  check(attr->typekind == TKIND_DISPATCH, c.name + ": a dispatch interface");
  Bstr name;
  info->GetDocumentation(MEMBERID_NIL, &name.b, nullptr, nullptr, nullptr);
  check(narrow(name.b) == "_" + c.name, c.name + ": interface named " + narrow(name.b));
  info->ReleaseTypeAttr(attr);

  // The vtable half of the dual interface: the members after IDispatch's seven.
  HREFTYPE ref = 0;
  ITypeInfo* vt = nullptr;
  if (SUCCEEDED(info->GetRefTypeOfImplType(-1, &ref)) &&
      SUCCEEDED(info->GetRefTypeInfo(ref, &vt))) {
    vt->GetTypeAttr(&attr);
    check(attr->cFuncs == c.members.size(),
          c.name + ": " + std::to_string(attr->cFuncs) + " members in the interface");
    for (UINT f = 0; f < attr->cFuncs && f < c.members.size(); ++f) {
      FUNCDESC* fd = nullptr;
      vt->GetFuncDesc(f, &fd);
      const Member& m = c.members[f];
      Bstr fname;
      vt->GetDocumentation(fd->memid, &fname.b, nullptr, nullptr, nullptr);
      check(narrow(fname.b) == m.name, c.name + ": member " + std::to_string(f) + " is " + m.name);
      check(fd->memid == m.dispatchId, c.name + "." + m.name + ": dispatch identifier");
      const int retval =
          (fd->cParams > 0 &&
           (fd->lprgelemdescParam[fd->cParams - 1].paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0)
              ? 1
              : 0;
      check(fd->cParams - retval == m.args, c.name + "." + m.name + ": argument count");
      check(fd->oVft == static_cast<SHORT>((7 + f) * sizeof(void*)),
            c.name + "." + m.name + ": vtable slot");
      vt->ReleaseFuncDesc(fd);
    }
    vt->ReleaseTypeAttr(attr);
    vt->Release();
  } else {
    check(false, c.name + ": the dual interface's vtable half");
  }
  info->Release();

  ITypeInfo* coclass = nullptr;
  check(SUCCEEDED(lib->GetTypeInfoOfGuid(c.classId, &coclass)), c.name + ": class found");
  if (coclass == nullptr) return;
  coclass->GetTypeAttr(&attr);
  check(attr->typekind == TKIND_COCLASS && (attr->wTypeFlags & TYPEFLAG_FCANCREATE) != 0,
        c.name + ": a creatable class");
  coclass->ReleaseTypeAttr(attr);
  INT flags = 0;
  HREFTYPE href = 0;
  ITypeInfo* def = nullptr;
  coclass->GetImplTypeFlags(0, &flags);
  check((flags & IMPLTYPEFLAG_FDEFAULT) != 0, c.name + ": its interface is the default");
  if (SUCCEEDED(coclass->GetRefTypeOfImplType(0, &href)) &&
      SUCCEEDED(coclass->GetRefTypeInfo(href, &def))) {
    def->GetTypeAttr(&attr);
    check(IsEqualGUID(attr->guid, c.interfaceId), c.name + ": default interface's GUID");
    def->ReleaseTypeAttr(attr);
    def->Release();
  }
  coclass->Release();
}

// Calls member `name` through IDispatch with the arguments as given (first argument first).
HRESULT callByName(IDispatch* d, const wchar_t* name, std::vector<VARIANT> args, VARIANT* result,
                   EXCEPINFO* ex) {
  DISPID id = 0;
  LPOLESTR n = const_cast<LPOLESTR>(name);
  HRESULT hr = d->GetIDsOfNames(IID_NULL, &n, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(hr)) return hr;
  std::vector<VARIANT> reversed(args.rbegin(), args.rend());
  DISPPARAMS p{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
  UINT argErr = 0;
  VariantInit(result);
  return d->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &p,
                   result, ex, &argErr);
}

VARIANT ofBstr(BSTR b) {
  VARIANT v;
  VariantInit(&v);
  V_VT(&v) = VT_BSTR;
  V_BSTR(&v) = b;
  return v;
}

void vtableAndDispatch(const std::wstring& connect) {
  _cStemsPersist* stems = nullptr;
  HRESULT hr = CoCreateInstance(CLSID_cStemsPersist, nullptr, CLSCTX_INPROC_SERVER,
                                IID__cStemsPersist, reinterpret_cast<void**>(&stems));
  check(SUCCEEDED(hr), "cStemsPersist created through its CLSID");
  if (stems == nullptr) return;

  Bstr state;
  check(SUCCEEDED(stems->GetState(&state.b)) && state.size() == 43, "vtable: GetState, 43 chars");
  Bstr conn(connect);
  VARIANT_BOOL ok = VARIANT_FALSE;
  check(SUCCEEDED(stems->Commit(&state.b, &conn.b, &ok)) && ok == VARIANT_TRUE,
        "vtable: Commit with key 0");
  Bstr after;
  stems->GetState(&after.b);
  const long key = after.size() >= 2 ? static_cast<long>(after.b[0]) + 65536L * after.b[1] : 0;
  check(key > 0, "vtable: GetState shows the new key");
  check(state.b[0] == 0 && state.b[1] == 0, "vtable: the caller's state is not written back");
  Bstr criteria(L"StemsId = " + std::to_wstring(key));
  Bstr buffer;
  check(SUCCEEDED(stems->Load(&criteria.b, &conn.b, &buffer.b)) && buffer.size() == 9 + 43,
        "vtable: Load finds the row");
  ok = VARIANT_FALSE;
  check(SUCCEEDED(stems->Delete(&after.b, &conn.b, &ok)) && ok == VARIANT_TRUE, "vtable: Delete");

  // An error through the vtable: the HRESULT and the thread's error object.
  Bstr bad(L"NoSuchColumn = 1");
  Bstr none;
  const HRESULT failed = stems->Load(&bad.b, &conn.b, &none.b);
  check(FAILED(failed), "vtable: a failing statement fails");
  IErrorInfo* error = nullptr;
  Bstr description;
  if (GetErrorInfo(0, &error) == S_OK) {
    error->GetDescription(&description.b);
    error->Release();
  }
  check(description.size() > 0, "vtable: the error object has the provider's text");

  // The same error through IDispatch: DISP_E_EXCEPTION with the same number and text.
  IDispatch* d = nullptr;
  stems->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&d));
  VARIANT r;
  EXCEPINFO ex{};
  hr = callByName(d, L"load", {ofBstr(bad.b), ofBstr(conn.b)}, &r, &ex);
  check(hr == DISP_E_EXCEPTION && ex.scode == failed, "dispatch: the same HRESULT in EXCEPINFO");
  check(ex.bstrDescription != nullptr && description.b != nullptr &&
            std::wstring(ex.bstrDescription) == std::wstring(description.b),
        "dispatch: the same text in EXCEPINFO");
  SysFreeString(ex.bstrDescription);
  SysFreeString(ex.bstrSource);
  SysFreeString(ex.bstrHelpFile);

  // By-reference Variants holding strings, and a missing argument as VT_ERROR.
  Bstr nothing(L"1 = 0");
  VARIANT inner[2];
  inner[0] = ofBstr(nothing.b);
  inner[1] = ofBstr(conn.b);
  VARIANT refs[2];
  for (int i = 0; i < 2; ++i) {
    VariantInit(&refs[i]);
    V_VT(&refs[i]) = VT_VARIANT | VT_BYREF;
    V_VARIANTREF(&refs[i]) = &inner[i];
  }
  VARIANT missing;
  VariantInit(&missing);
  V_VT(&missing) = VT_ERROR;
  V_ERROR(&missing) = DISP_E_PARAMNOTFOUND;
  IDispatch* grades = nullptr;
  hr = CoCreateInstance(CLSID_cGreenGradePersist, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                        reinterpret_cast<void**>(&grades));
  check(SUCCEEDED(hr), "cGreenGradePersist created as IDispatch");
  if (grades != nullptr) {
    hr = callByName(grades, L"LOAD", {refs[0], refs[1], missing}, &r, nullptr);
    check(hr == S_OK && V_VT(&r) == VT_BSTR && SysStringLen(V_BSTR(&r)) == 9,
          "dispatch: by-reference Variants and a missing lTop");
    VariantClear(&r);
    check(V_BSTR(&inner[0]) == nothing.b, "dispatch: nothing written back");
    VARIANT top;
    VariantInit(&top);
    V_VT(&top) = VT_R8;
    V_R8(&top) = 2.5;  // rounds to 2, half to even
    hr = callByName(grades, L"Load", {ofBstr(nothing.b), ofBstr(conn.b), top}, &r, nullptr);
    check(hr == S_OK, "dispatch: a Double lTop is coerced");
    VariantClear(&r);
    hr = callByName(grades, L"Load", {ofBstr(nothing.b), ofBstr(conn.b), top, top}, &r, nullptr);
    check(hr == DISP_E_BADPARAMCOUNT, "dispatch: too many arguments");
    DISPID id = 0;
    LPOLESTR privateName = const_cast<LPOLESTR>(L"SetState");
    check(grades->GetIDsOfNames(IID_NULL, &privateName, 1, 0, &id) == DISP_E_UNKNOWNNAME,
          "dispatch: a private member has no name");
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    check(grades->Invoke(0x60030002, IID_NULL, 0, DISPATCH_METHOD, &none, &r, nullptr, nullptr) ==
              DISP_E_MEMBERNOTFOUND,
          "dispatch: nor an identifier");
    ITypeInfo* ti = nullptr;
    check(SUCCEEDED(grades->GetTypeInfo(0, 0, &ti)) && ti != nullptr, "dispatch: GetTypeInfo");
    if (ti != nullptr) ti->Release();
    grades->Release();
  }
  d->Release();
  stems->Release();

  IClassFactory* factory = nullptr;
  // The server may unload only when no object, factory or lock is left.
  using CanUnload = HRESULT(STDAPICALLTYPE*)();
  const auto canUnload = reinterpret_cast<CanUnload>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"vrdppo.dll"), "DllCanUnloadNow")));
  check(canUnload != nullptr && canUnload() == S_OK, "DllCanUnloadNow: nothing held");
  if (SUCCEEDED(CoGetClassObject(CLSID_cStemsPersist, CLSCTX_INPROC_SERVER, nullptr,
                                 IID_IClassFactory, reinterpret_cast<void**>(&factory)))) {
    factory->LockServer(TRUE);
    factory->Release();
    check(canUnload != nullptr && canUnload() == S_FALSE, "DllCanUnloadNow: a lock held");
    CoGetClassObject(CLSID_cStemsPersist, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                     reinterpret_cast<void**>(&factory));
    factory->LockServer(FALSE);
    factory->Release();
    check(canUnload != nullptr && canUnload() == S_OK, "DllCanUnloadNow: the lock released");
  } else {
    check(false, "the class factory of cStemsPersist");
  }
  using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  const auto getClassObject = reinterpret_cast<GetClassObject>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleW(L"vrdppo.dll"), "DllGetClassObject")));
  void* unknownFactory = nullptr;
  check(getClassObject != nullptr &&
            getClassObject(IID_IDispatch, IID_IClassFactory, &unknownFactory) ==
                CLASS_E_CLASSNOTAVAILABLE &&
            unknownFactory == nullptr,
        "DllGetClassObject: no factory for an identifier no class has");
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 3) {
    std::printf("usage: typelib_client EXPECTATIONS STORE\n");
    return 2;
  }
  std::ifstream in(argv[1]);
  std::string line, libId;
  std::vector<Class> classes;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string kind;
    words >> kind;
    if (kind == "library") {
      std::string name;
      words >> name >> libId;
    } else if (kind == "class") {
      Class c;
      std::string clsid, iid;
      int members = 0;
      words >> c.name >> clsid >> iid >> members >> c.stateChars;
      c.classId = guidOf(clsid);
      c.interfaceId = guidOf(iid);
      classes.push_back(c);
    } else if (kind == "member" && !classes.empty()) {
      Member m;
      words >> m.name >> m.dispatchId >> m.args;
      classes.back().members.push_back(m);
    }
  }
  check(classes.size() == 84, "84 classes expected");

  CoInitialize(nullptr);
  ITypeLib* lib = nullptr;
  HRESULT hr = LoadRegTypeLib(guidOf(libId), 1, 0, LOCALE_NEUTRAL, &lib);
  check(SUCCEEDED(hr), "the registered type library loads");
  if (lib != nullptr) {
    const UINT count = lib->GetTypeInfoCount();
    check(count == 2 * classes.size(), "type entries: " + std::to_string(count));
    Bstr name, help;
    lib->GetDocumentation(-1, &name.b, &help.b, nullptr, nullptr);
    check(narrow(name.b) == "vrdppo", "library name");
    check(narrow(help.b) == "VRD Production Persistence Object", "help string");
    for (const Class& c : classes) checkClass(lib, c);
    std::printf("type entries: %u\n", count);
    lib->Release();
  }
  const std::wstring store = argv[2];
  vtableAndDispatch(L"Provider=vrdppo.Embedded;Data Source=" + store);
  CoUninitialize();
  std::printf("checks: %d, failures: %d\n", checks, failures);
  return failures == 0 ? 0 : 1;
}
