#include <limits>

#include "server/server.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::server {

namespace {

[[noreturn]] void mismatch() {
  throw Error::runtime(err::kTypeMismatch);
}

// The value, or where it is by reference, what the pointer points at.
template <class T>
T value(const VARIANT& v, T byValue, const T* byRef) {
  if ((V_VT(&v) & VT_BYREF) == 0) return byValue;
  if (byRef == nullptr) throw Error::runtime(err::kInvalidCall);
  return *byRef;
}

Variant wholeNumber(std::int64_t n) {
  if (n >= std::numeric_limits<std::int32_t>::min() &&
      n <= std::numeric_limits<std::int32_t>::max()) {
    return Variant(static_cast<std::int32_t>(n));
  }
  return Variant(n);
}

}  // namespace

BSTR toBstr(std::u16string_view s) {
  BSTR b =
      SysAllocStringLen(reinterpret_cast<const OLECHAR*>(s.data()), static_cast<UINT>(s.size()));
  if (b == nullptr && !s.empty()) throw Error::runtime(err::kOutOfMemory);
  return b;
}

std::u16string fromBstr(BSTR b) {
  if (b == nullptr) return {};
  return std::u16string(reinterpret_cast<const char16_t*>(b), SysStringLen(b));
}

Variant fromVariant(const VARIANT& in) {
  const VARIANT* v = &in;
  if (V_VT(v) == (VT_VARIANT | VT_BYREF)) {
    v = V_VARIANTREF(v);
    if (v == nullptr) throw Error::runtime(err::kInvalidCall);
    // A by-reference Variant holds a value, or one more reference to a typed value.
    if (V_VT(v) == (VT_VARIANT | VT_BYREF)) mismatch();
  }
  const VARTYPE vt = V_VT(v) & static_cast<VARTYPE>(~VT_BYREF);
  if ((vt & VT_ARRAY) != 0) mismatch();
  const VARIANT& x = *v;
  switch (vt) {
    case VT_EMPTY:
      return Variant();
    case VT_NULL:
      return Variant::null();
    case VT_BOOL:
      return Variant(value(x, V_BOOL(&x), V_BOOLREF(&x)) != VARIANT_FALSE);
    case VT_I1:
      return Variant(std::int32_t{value(x, V_I1(&x), V_I1REF(&x))});
    case VT_UI1:
      return Variant(std::int32_t{value(x, V_UI1(&x), V_UI1REF(&x))});
    case VT_I2:
      return Variant(std::int32_t{value(x, V_I2(&x), V_I2REF(&x))});
    case VT_UI2:
      return Variant(std::int32_t{value(x, V_UI2(&x), V_UI2REF(&x))});
    case VT_I4:
      return Variant(static_cast<std::int32_t>(value(x, V_I4(&x), V_I4REF(&x))));
    case VT_INT:
      return Variant(static_cast<std::int32_t>(value(x, V_INT(&x), V_INTREF(&x))));
    case VT_UI4:
      return wholeNumber(value(x, V_UI4(&x), V_UI4REF(&x)));
    case VT_UINT:
      return wholeNumber(value(x, V_UINT(&x), V_UINTREF(&x)));
    case VT_I8:
      return Variant(static_cast<std::int64_t>(value(x, V_I8(&x), V_I8REF(&x))));
    case VT_UI8: {
      const ULONGLONG n = value(x, V_UI8(&x), V_UI8REF(&x));
      if (n > static_cast<ULONGLONG>(std::numeric_limits<std::int64_t>::max())) {
        throw Error::runtime(err::kOverflow);
      }
      return Variant(static_cast<std::int64_t>(n));
    }
    case VT_R4:
      return Variant(static_cast<double>(value(x, V_R4(&x), V_R4REF(&x))));
    case VT_R8:
      return Variant(static_cast<double>(value(x, V_R8(&x), V_R8REF(&x))));
    case VT_CY:
      return Variant(Currency{value(x, V_CY(&x), V_CYREF(&x)).int64});
    case VT_DATE:
      return Variant(Date{value(x, V_DATE(&x), V_DATEREF(&x))});
    case VT_BSTR:
      return Variant(fromBstr(value(x, V_BSTR(&x), V_BSTRREF(&x))));
    case VT_DECIMAL: {
      DECIMAL d = value(x, V_DECIMAL(&x), V_DECIMALREF(&x));
      BSTR text = nullptr;
      // The invariant locale writes a point, as the library's Decimal holds it.
      if (FAILED(VarBstrFromDec(&d, LOCALE_INVARIANT, 0, &text))) mismatch();
      Decimal out{toUtf8(fromBstr(text))};
      SysFreeString(text);
      return Variant(std::move(out));
    }
    case VT_ERROR:
      if (value(x, V_ERROR(&x), V_ERRORREF(&x)) == DISP_E_PARAMNOTFOUND) return Variant::missing();
      mismatch();
    default:
      mismatch();
  }
}

void toVariant(const Variant& v, VARIANT* out) {
  VariantInit(out);
  switch (v.type()) {
    case VarType::Empty:
      return;
    case VarType::Null:
      V_VT(out) = VT_NULL;
      return;
    case VarType::Boolean:
      V_VT(out) = VT_BOOL;
      V_BOOL(out) = v.boolean() ? VARIANT_TRUE : VARIANT_FALSE;
      return;
    case VarType::Long:
      V_VT(out) = VT_I4;
      V_I4(out) = v.lng();
      return;
    case VarType::Double:
      V_VT(out) = VT_R8;
      V_R8(out) = v.dbl();
      return;
    case VarType::Currency:
      V_VT(out) = VT_CY;
      V_CY(out).int64 = v.cur().raw;
      return;
    case VarType::Date:
      V_VT(out) = VT_DATE;
      V_DATE(out) = v.date().days;
      return;
    case VarType::String:
      V_BSTR(out) = toBstr(v.str());
      V_VT(out) = VT_BSTR;
      return;
    case VarType::LongLong:
      V_VT(out) = VT_I8;
      V_I8(out) = v.longLong();
      return;
    case VarType::Decimal: {
      const std::wstring text = wideOf(v.decimal().text);
      DECIMAL d{};
      if (FAILED(VarDecFromStr(const_cast<OLECHAR*>(text.c_str()), LOCALE_INVARIANT, 0, &d))) {
        throw Error::runtime(err::kOverflow);
      }
      V_DECIMAL(out) = d;
      V_VT(out) = VT_DECIMAL;  // after the DECIMAL: it shares the VARIANT's first bytes
      return;
    }
    case VarType::Missing:
      V_VT(out) = VT_ERROR;
      V_ERROR(out) = DISP_E_PARAMNOTFOUND;
      return;
  }
}

HRESULT hresultOf(std::int32_t number) noexcept {
  if (number > 0 && number <= 0xFFFF) {
    return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, static_cast<unsigned>(number));
  }
  return number < 0 ? static_cast<HRESULT>(number) : E_FAIL;
}

void fillException(const Error& e, EXCEPINFO* info) noexcept {
  if (info == nullptr) return;
  *info = EXCEPINFO{};
  info->scode = hresultOf(e.number());
  try {
    info->bstrSource = toBstr(fromUtf8(e.source()));
    info->bstrDescription = toBstr(fromUtf8(e.description()));
  } catch (...) {
    SysFreeString(info->bstrSource);
    info->bstrSource = nullptr;  // the number alone, where even the texts cannot be had
  }
}

HRESULT raiseErrorInfo(const Error& e, REFIID iid) noexcept {
  ICreateErrorInfo* create = nullptr;
  if (SUCCEEDED(CreateErrorInfo(&create))) {
    try {
      const std::wstring source = wideOf(e.source());
      const std::wstring description = wideOf(e.description());
      create->SetGUID(iid);
      create->SetSource(const_cast<LPOLESTR>(source.c_str()));
      create->SetDescription(const_cast<LPOLESTR>(description.c_str()));
      IErrorInfo* info = nullptr;
      if (SUCCEEDED(create->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)))) {
        SetErrorInfo(0, info);
        info->Release();
      }
    } catch (...) {
    }
    create->Release();
  }
  return hresultOf(e.number());
}

}  // namespace vrdppo::server
