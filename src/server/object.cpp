// An object of a class as the platform sees it: IDispatch for late-bound clients, the class's
// dual vtable for early-bound ones, ISupportErrorInfo for the errors of the latter.
#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

#include "server/server.hpp"
#include "server/vtable.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::server {

namespace {

class Object;

// What an interface pointer of the dual interface points at: the vtable first, as the platform
// requires, and the object it belongs to.
struct DualHead {
  void (*const* vtable)();
  Object* self;
};

class ErrorSupport final : public ISupportErrorInfo {
 public:
  explicit ErrorSupport(Object& self) : self_(self) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override;

 private:
  Object& self_;
};

class Object {
 public:
  explicit Object(const ServedClass& c)
      : head_{c.vtable.data(), this}, errors_(*this), class_(c), object_(c.info->create()) {
    objectCreated();
  }
  ~Object() { objectDestroyed(); }
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  HRESULT queryInterface(REFIID iid, void** out) noexcept {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ||
        IsEqualIID(iid, class_.interfaceId)) {
      *out = &head_;
    } else if (IsEqualIID(iid, IID_ISupportErrorInfo)) {
      *out = static_cast<ISupportErrorInfo*>(&errors_);
    } else {
      return E_NOINTERFACE;
    }
    addRef();
    return S_OK;
  }
  ULONG addRef() noexcept { return ++refs_; }
  ULONG release() noexcept {
    const ULONG left = --refs_;
    if (left == 0) delete this;
    return left;
  }
  const ServedClass& servedClass() const noexcept { return class_; }

  HRESULT getTypeInfo(UINT index, ITypeInfo** out) noexcept {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    ITypeLib* library = nullptr;
    const HRESULT hr = typeLibrary(&library);
    if (FAILED(hr)) return hr;
    return library->GetTypeInfoOfGuid(class_.interfaceId, out);
  }

  HRESULT getIdsOfNames(LPOLESTR* names, UINT count, DISPID* ids) noexcept {
    if (names == nullptr || ids == nullptr) return E_POINTER;
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    if (count == 0) return S_OK;
    try {
      const MemberInfo* m = class_.info->member(nameOf(names[0]));
      if (m == nullptr || !m->isPublic) return DISP_E_UNKNOWNNAME;
      ids[0] = m->dispatchId;
      // Further names are those of arguments; an argument's identifier is its place.
      HRESULT hr = S_OK;
      for (UINT i = 1; i < count; ++i) {
        const std::u16string name = fromUtf8(nameOf(names[i]));
        for (std::size_t a = 0; a < m->args.size(); ++a) {
          if (equalsNoCase(fromUtf8(m->args[a].name), name)) ids[i] = static_cast<DISPID>(a);
        }
        if (ids[i] == DISPID_UNKNOWN) hr = DISP_E_UNKNOWNNAME;
      }
      return hr;
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }

  HRESULT invoke(DISPID id, WORD flags, DISPPARAMS* params, VARIANT* result, EXCEPINFO* info,
                 UINT* argError) noexcept {
    const MemberInfo* m = class_.info->member(static_cast<std::int32_t>(id));
    if (m == nullptr || !m->isPublic) return DISP_E_MEMBERNOTFOUND;
    if ((flags & (DISPATCH_METHOD | DISPATCH_PROPERTYGET)) == 0) return DISP_E_MEMBERNOTFOUND;
    if (params == nullptr) return E_INVALIDARG;
    if (params->cArgs > m->args.size()) return DISP_E_BADPARAMCOUNT;
    if (params->cNamedArgs > params->cArgs) return E_INVALIDARG;
    if (result != nullptr) VariantInit(result);
    try {
      std::vector<Variant> args(m->args.size(), Variant::missing());
      const UINT positional = params->cArgs - params->cNamedArgs;
      // The platform passes arguments last first; named ones come first in the array.
      for (UINT j = 0; j < positional; ++j) {
        args[j] = argument(*m, j, params->rgvarg[params->cArgs - 1 - j]);
      }
      for (UINT i = 0; i < params->cNamedArgs; ++i) {
        const DISPID place = params->rgdispidNamedArgs[i];
        if (place < 0 || static_cast<std::size_t>(place) >= m->args.size()) {
          if (argError != nullptr) *argError = i;
          return DISP_E_PARAMNOTFOUND;
        }
        args[static_cast<std::size_t>(place)] =
            argument(*m, static_cast<std::size_t>(place), params->rgvarg[i]);
      }
      Variant r;
      translated([&] { r = registry::invoke(*object_, m->dispatchId, args); });
      if (result != nullptr) toVariant(r, result);
      return S_OK;
    } catch (const Error& e) {
      if (result != nullptr) VariantClear(result);
      fillException(e, info);
      return DISP_E_EXCEPTION;
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }

  // A call through vtable slot k: raw holds the arguments as the calling convention passed them,
  // every one a pointer or an integer in a register or stack slot of its own.
  HRESULT callSlot(std::size_t k, const std::uintptr_t* raw) noexcept {
    const MemberInfo& m = *class_.members[k];
    try {
      std::vector<Variant> args;
      args.reserve(m.args.size());
      for (std::size_t i = 0; i < m.args.size(); ++i)
        args.push_back(rawArgument(m.args[i], raw[i]));
      Variant r;
      translated([&] { r = registry::invoke(*object_, m.dispatchId, args); });
      if (m.result != ValueType::None) {
        void* out = reinterpret_cast<void*>(raw[m.args.size()]);
        if (out == nullptr) return E_POINTER;
        writeResult(m.result, r, out);
      }
      return S_OK;
    } catch (const Error& e) {
      return raiseErrorInfo(e, class_.interfaceId);
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }

 private:
  static std::string nameOf(LPOLESTR name) {
    if (name == nullptr) return {};
    return toUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(name)));
  }

  // A recordset cannot travel as a Variant; the member refuses the call whatever it is given.
  static Variant argument(const MemberInfo& m, std::size_t place, const VARIANT& v) {
    if (m.args[place].type == ValueType::Recordset) return Variant();
    return fromVariant(v);
  }

  static Variant rawArgument(const ArgInfo& a, std::uintptr_t raw) {
    if (!a.byRef) {
      switch (a.type) {
        case ValueType::String:
          return Variant(fromBstr(reinterpret_cast<BSTR>(raw)));
        case ValueType::Long:
          return Variant(static_cast<std::int32_t>(static_cast<std::uint32_t>(raw)));
        case ValueType::Boolean:
          return Variant(static_cast<VARIANT_BOOL>(raw) != VARIANT_FALSE);
        case ValueType::Variant:  // a VARIANT by value travels by its address
          if (raw == 0) throw Error::runtime(err::kInvalidCall);
          return fromVariant(*reinterpret_cast<const VARIANT*>(raw));
        default:
          throw Error::runtime(err::kInvalidCall);  // vtableFits() keeps these out
      }
    }
    const void* p = reinterpret_cast<const void*>(raw);
    if (p == nullptr) throw Error::runtime(err::kInvalidCall);
    switch (a.type) {
      case ValueType::String:
        return Variant(fromBstr(*static_cast<const BSTR*>(p)));
      case ValueType::Long:
        return Variant(static_cast<std::int32_t>(*static_cast<const LONG*>(p)));
      case ValueType::Boolean:
        return Variant(*static_cast<const VARIANT_BOOL*>(p) != VARIANT_FALSE);
      case ValueType::Double:
        return Variant(*static_cast<const double*>(p));
      case ValueType::Date:
        return Variant(Date{*static_cast<const DATE*>(p)});
      case ValueType::Variant:
        return fromVariant(*static_cast<const VARIANT*>(p));
      case ValueType::Recordset:
      case ValueType::None:
        break;
    }
    return Variant();
  }

  static void writeResult(ValueType type, const Variant& r, void* out) {
    switch (type) {
      case ValueType::String:
        *static_cast<BSTR*>(out) = toBstr(toString(r));
        return;
      case ValueType::Long:
        *static_cast<LONG*>(out) = toLong(r);
        return;
      case ValueType::Boolean:
        *static_cast<VARIANT_BOOL*>(out) = toBoolean(r) ? VARIANT_TRUE : VARIANT_FALSE;
        return;
      case ValueType::Double:
        *static_cast<double*>(out) = toDouble(r);
        return;
      case ValueType::Date:
        *static_cast<DATE*>(out) = toDate(r).days;
        return;
      case ValueType::Variant:
        toVariant(r, static_cast<VARIANT*>(out));
        return;
      case ValueType::Recordset:
      case ValueType::None:
        return;
    }
  }

  DualHead head_;
  ErrorSupport errors_;
  std::atomic<ULONG> refs_{1};
  const ServedClass& class_;
  std::unique_ptr<PersistObject> object_;
};

HRESULT STDMETHODCALLTYPE ErrorSupport::QueryInterface(REFIID iid, void** out) {
  return self_.queryInterface(iid, out);
}
ULONG STDMETHODCALLTYPE ErrorSupport::AddRef() {
  return self_.addRef();
}
ULONG STDMETHODCALLTYPE ErrorSupport::Release() {
  return self_.release();
}
HRESULT STDMETHODCALLTYPE ErrorSupport::InterfaceSupportsErrorInfo(REFIID iid) {
  return IsEqualIID(iid, self_.servedClass().interfaceId) ? S_OK : S_FALSE;
}

// The slots of IUnknown and IDispatch, shared by every class's vtable.
Object& of(DualHead* head) {
  return *head->self;
}
HRESULT STDMETHODCALLTYPE queryInterface(DualHead* h, REFIID iid, void** out) {
  return of(h).queryInterface(iid, out);
}
ULONG STDMETHODCALLTYPE addRef(DualHead* h) {
  return of(h).addRef();
}
ULONG STDMETHODCALLTYPE release(DualHead* h) {
  return of(h).release();
}
HRESULT STDMETHODCALLTYPE getTypeInfoCount(DualHead*, UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}
HRESULT STDMETHODCALLTYPE getTypeInfo(DualHead* h, UINT index, LCID, ITypeInfo** out) {
  return of(h).getTypeInfo(index, out);
}
HRESULT STDMETHODCALLTYPE getIdsOfNames(DualHead* h, REFIID iid, LPOLESTR* names, UINT count, LCID,
                                        DISPID* ids) {
  if (!IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  return of(h).getIdsOfNames(names, count, ids);
}
HRESULT STDMETHODCALLTYPE invoke(DualHead* h, DISPID id, REFIID iid, LCID, WORD flags,
                                 DISPPARAMS* params, VARIANT* result, EXCEPINFO* info,
                                 UINT* argError) {
  if (!IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  return of(h).invoke(id, flags, params, result, info, argError);
}

// Slot K of the members: every argument of the dual interfaces is a pointer, a BSTR, a long or a
// VARIANT_BOOL, so that each sits in an integer register or a stack slot of its own, and a thunk
// that takes kMaxSlotArgs of them reads the caller's as they came (those it did not pass are
// never looked at).
using Raw = std::uintptr_t;
template <std::size_t K>
HRESULT STDMETHODCALLTYPE memberSlot(DualHead* h, Raw a0, Raw a1, Raw a2, Raw a3, Raw a4, Raw a5,
                                     Raw a6, Raw a7) {
  const std::array<Raw, kMaxSlotArgs> raw{a0, a1, a2, a3, a4, a5, a6, a7};
  return of(h).callSlot(K, raw.data());
}
static_assert(kMaxSlotArgs == 8, "memberSlot takes kMaxSlotArgs arguments");

template <class F>
void (*slot(F f))() {
  return reinterpret_cast<void (*)()>(f);
}

template <std::size_t... K>
std::array<void (*)(), sizeof...(K)> memberSlots(std::index_sequence<K...>) {
  return {slot(&memberSlot<K>)...};
}

}  // namespace

std::vector<void (*)()> dualVtable(std::size_t members) {
  static const auto slots = memberSlots(std::make_index_sequence<kMaxSlots>());
  if (members > slots.size()) throw Error(err::kInvalidCall, "a class has too many members");
  std::vector<void (*)()> table{
      slot(&queryInterface), slot(&addRef),        slot(&release), slot(&getTypeInfoCount),
      slot(&getTypeInfo),    slot(&getIdsOfNames), slot(&invoke)};
  table.insert(table.end(), slots.begin(), slots.begin() + static_cast<std::ptrdiff_t>(members));
  return table;
}

HRESULT createObject(const ServedClass& c, REFIID iid, void** out) noexcept {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  Object* o = nullptr;
  try {
    o = new Object(c);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
  const HRESULT hr = o->queryInterface(iid, out);
  o->release();
  return hr;
}

}  // namespace vrdppo::server
