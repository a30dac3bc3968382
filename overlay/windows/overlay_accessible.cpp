#include "overlay/windows/overlay_accessible.h"
#include "overlay/windows/overlay_window_state.h"

#include <commctrl.h>
#include <oleacc.h>

#include <new>
#include <string>

#include "common/bstr.h"
#include "common/com_ptr.h"
#include "common/module_activation_context.h"
#include "log/exception_barrier.h"
#include "log/write_log.h"
#include "overlay/layouts/accessible_names.h"
#include "overlay/windows/window_class_names.h"

namespace {
volatile LONG liveObjects = 0;
constexpr UINT_PTR kSubclassId = 0x51a11;

std::wstring WindowText(HWND window) {
  const int length = GetWindowTextLengthW(window);
  if (length <= 0) return std::wstring();
  std::wstring text(static_cast<size_t>(length) + 1, L'\0');
  const int copied = GetWindowTextW(window, &text[0], length + 1);
  text.resize(copied > 0 ? static_cast<size_t>(copied) : 0);
  return text;
}

bool IsOverlayWindow(HWND window) {
  wchar_t name[64] = {};
  if (window == nullptr || GetClassNameW(window, name, 64) == 0) return false;
  static const std::wstring prefix = L"QelvoFilewellSync-MSOfficeAddin-";
  return std::wstring(name).compare(0, prefix.size(), prefix) == 0;
}

// The badge's own state says what it shows: no cache lookup, and only
// the UI thread (where screen readers' calls arrive) touches it.
OverlayKind KindOfBadge(HWND badge) {
  const OverlayWindowState* state = WindowStateOf(badge);
  return state ? static_cast<OverlayKind>(state->overlayKind) : OverlayKind::None;
}

bool IsSelf(const VARIANT& child) { return child.vt == VT_I4 && child.lVal == CHILDID_SELF; }

// The standard object of the window with our name, role and default
// action on top. Read from the window at each call: a screen reader may
// keep the object while the badge changes its kind.
class OverlayAccessible final : public IAccessible {
 public:
  OverlayAccessible(HWND window, AccessibleControl control, ComPtr<IAccessible> standard)
      : window_(window), control_(control), standard_(std::move(standard)) {
    InterlockedIncrement(&liveObjects);
  }

  // IUnknown
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == IID_IAccessible) {
      *object = static_cast<IAccessible*>(this);
      AddRef();
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references_)); }
  ULONG STDMETHODCALLTYPE Release() override {
    const LONG left = InterlockedDecrement(&references_);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
  }

  // IDispatch: the standard object's.
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return standard_->GetTypeInfoCount(count); }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override {
    return standard_->GetTypeInfo(index, locale, info);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) override {
    return standard_->GetIDsOfNames(iid, names, count, locale, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override {
    return standard_->Invoke(id, iid, locale, flags, parameters, result, exception, argumentError);
  }

  // IAccessible: ours for the window itself.
  HRESULT STDMETHODCALLTYPE get_accName(VARIANT child, BSTR* name) override {
    if (name == nullptr) return E_POINTER;
    if (!IsSelf(child)) return standard_->get_accName(child, name);
    *name = nullptr;
    return Guarded(L"telling a screen reader an overlay's name", E_FAIL, [&] {
      if (!IsWindow(window_)) return E_FAIL;
      *name = UniqueBstr(Name()).release();
      return *name != nullptr ? S_OK : E_OUTOFMEMORY;
    });
  }
  HRESULT STDMETHODCALLTYPE get_accRole(VARIANT child, VARIANT* role) override {
    if (role == nullptr) return E_POINTER;
    if (!IsSelf(child)) return standard_->get_accRole(child, role);
    VariantInit(role);
    return Guarded(L"telling a screen reader an overlay's role", E_FAIL, [&] {
      if (!IsWindow(window_)) return E_FAIL;
      role->vt = VT_I4;
      role->lVal = Role();
      return S_OK;
    });
  }
  HRESULT STDMETHODCALLTYPE get_accDefaultAction(VARIANT child, BSTR* action) override {
    if (action == nullptr) return E_POINTER;
    if (!IsSelf(child) || control_ != AccessibleControl::OwnerDrawnButton) {
      return standard_->get_accDefaultAction(child, action);
    }
    *action = UniqueBstr(kButtonDefaultAction).release();
    return *action != nullptr ? S_OK : E_OUTOFMEMORY;
  }
  HRESULT STDMETHODCALLTYPE accDoDefaultAction(VARIANT child) override {
    if (!IsSelf(child) || control_ != AccessibleControl::OwnerDrawnButton) return standard_->accDoDefaultAction(child);
    if (!IsWindow(window_)) return E_FAIL;
    // The click the button would report, posted: the screen reader's call
    // returns at once, the panel handles it as it handles a mouse click,
    // and the focus stays where the user has it.
    const int id = GetDlgCtrlID(window_);
    if (!PostMessageW(GetParent(window_), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(window_))) {
      return HRESULT_FROM_WIN32(GetLastError());
    }
    return S_OK;
  }

  // IAccessible: the standard object's for the rest.
  HRESULT STDMETHODCALLTYPE get_accParent(IDispatch** parent) override { return standard_->get_accParent(parent); }
  HRESULT STDMETHODCALLTYPE get_accChildCount(long* count) override { return standard_->get_accChildCount(count); }
  HRESULT STDMETHODCALLTYPE get_accChild(VARIANT child, IDispatch** object) override {
    return standard_->get_accChild(child, object);
  }
  HRESULT STDMETHODCALLTYPE get_accValue(VARIANT child, BSTR* value) override {
    return standard_->get_accValue(child, value);
  }
  HRESULT STDMETHODCALLTYPE get_accDescription(VARIANT child, BSTR* text) override {
    return standard_->get_accDescription(child, text);
  }
  HRESULT STDMETHODCALLTYPE get_accState(VARIANT child, VARIANT* state) override {
    return standard_->get_accState(child, state);
  }
  HRESULT STDMETHODCALLTYPE get_accHelp(VARIANT child, BSTR* help) override { return standard_->get_accHelp(child, help); }
  HRESULT STDMETHODCALLTYPE get_accHelpTopic(BSTR* file, VARIANT child, long* topic) override {
    return standard_->get_accHelpTopic(file, child, topic);
  }
  HRESULT STDMETHODCALLTYPE get_accKeyboardShortcut(VARIANT child, BSTR* shortcut) override {
    return standard_->get_accKeyboardShortcut(child, shortcut);
  }
  HRESULT STDMETHODCALLTYPE get_accFocus(VARIANT* child) override { return standard_->get_accFocus(child); }
  HRESULT STDMETHODCALLTYPE get_accSelection(VARIANT* children) override {
    return standard_->get_accSelection(children);
  }
  HRESULT STDMETHODCALLTYPE accSelect(long flags, VARIANT child) override { return standard_->accSelect(flags, child); }
  HRESULT STDMETHODCALLTYPE accLocation(long* left, long* top, long* width, long* height, VARIANT child) override {
    return standard_->accLocation(left, top, width, height, child);
  }
  HRESULT STDMETHODCALLTYPE accNavigate(long direction, VARIANT start, VARIANT* end) override {
    return standard_->accNavigate(direction, start, end);
  }
  HRESULT STDMETHODCALLTYPE accHitTest(long x, long y, VARIANT* child) override {
    return standard_->accHitTest(x, y, child);
  }
  HRESULT STDMETHODCALLTYPE put_accName(VARIANT, BSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_accValue(VARIANT, BSTR) override { return E_NOTIMPL; }

 private:
  ~OverlayAccessible() { InterlockedDecrement(&liveObjects); }

  std::wstring Name() const {
    switch (control_) {
      case AccessibleControl::Badge: return BadgeAccessibleName(KindOfBadge(window_));
      case AccessibleControl::Link: return LinkAccessibleName(WindowText(window_));
      default: return WindowText(window_);
    }
  }
  long Role() const {
    switch (control_) {
      case AccessibleControl::Badge: return BadgeAccessibleRole(KindOfBadge(window_));
      case AccessibleControl::Panel: return kPanelAccessibleRole;
      case AccessibleControl::OwnerDrawnButton: return kRolePushButton;
      case AccessibleControl::Link: return kRoleLink;
      case AccessibleControl::OwnerDrawnTitle: break;
    }
    return kRoleStaticText;
  }

  LONG references_ = 1;
  HWND window_;
  AccessibleControl control_;
  ComPtr<IAccessible> standard_;
};

// The LRESULT that hands our object for the window to the caller; 0 (the
// caller then builds the standard object itself) when that fails.
LRESULT Answer(HWND window, WPARAM wParam, AccessibleControl control) {
  ComPtr<IAccessible> standard;
  const HRESULT created = CreateStdAccessibleObject(window, OBJID_CLIENT, IID_IAccessible, standard.put_void());
  if (FAILED(created) || !standard) {
    WriteLog(LogLevel::Error, L"couldn't create standard accessible object - " + std::to_wstring(created));
    return 0;
  }
  auto* ours = new (std::nothrow) OverlayAccessible(window, control, std::move(standard));
  if (ours == nullptr) return 0;
  const LRESULT result = LresultFromObject(IID_IAccessible, wParam, static_cast<IAccessible*>(ours));
  ours->Release();  // LresultFromObject holds its own reference until the caller takes it
  if (FAILED(static_cast<HRESULT>(result))) {
    WriteLog(LogLevel::Error, L"couldn't hand accessible object - " + std::to_wstring(static_cast<long>(result)));
    return 0;
  }
  return result;
}

bool AsksForClient(LPARAM lParam) { return static_cast<LONG>(static_cast<DWORD>(lParam)) == OBJID_CLIENT; }

LRESULT CALLBACK AccessibleControlProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                       DWORD_PTR control) {
  if (message == WM_GETOBJECT && AsksForClient(lParam)) {
    const LRESULT result = Guarded(L"answering a screen reader", static_cast<LRESULT>(0), [&] {
      return Answer(window, wParam, static_cast<AccessibleControl>(control));
    });
    if (result != 0) return result;
  } else if (message == WM_NCDESTROY) {
    RemoveWindowSubclass(window, AccessibleControlProc, id);
  }
  return DefSubclassProc(window, message, wParam, lParam);
}
}  // namespace

bool AnswerOverlayGetObject(HWND window, WPARAM wParam, LPARAM lParam, LRESULT& result) {
  if (!AsksForClient(lParam) || (GetWindowLongPtrW(window, GWL_STYLE) & WS_CHILD) != 0) return false;
  // A panel is owned by its badge; a badge or strip by the Office window.
  const AccessibleControl control =
      IsOverlayWindow(GetWindow(window, GW_OWNER)) ? AccessibleControl::Panel : AccessibleControl::Badge;
  result = Answer(window, wParam, control);
  return result != 0;
}

bool GiveAccessibleAnswer(HWND control, AccessibleControl kind) {
  // Inside our activation context: the same subclassing the version 6
  // controls (the link) use for themselves.
  ScopedModuleActivation activation;
  if (SetWindowSubclass(control, AccessibleControlProc, kSubclassId, static_cast<DWORD_PTR>(kind))) return true;
  WriteLog(LogLevel::Error, L"couldn't give a control its screen reader name");
  return false;
}

long LiveOverlayAccessibleObjects() { return liveObjects; }
