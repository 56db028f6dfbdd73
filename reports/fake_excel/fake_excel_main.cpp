// A stand-in spreadsheet automation server for the tests: started by COM
// (-Embedding) it serves its class to one client and ends when that client
// has released everything; started with --active it registers itself as the
// running instance and serves until told to quit.
#include <windows.h>
#include <ole2.h>
#include <shellapi.h>

#include <string>

#include "fake_excel_ids.h"
#include "fake_excel_log.h"
#include "fake_excel_objects.h"

namespace {

class Factory : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (!out) return E_POINTER;
    if (iid == IID_IUnknown || iid == IID_IClassFactory) {
      *out = static_cast<IClassFactory*>(this);
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    if (outer) return CLASS_E_NOAGGREGATION;
    IDispatch* application = fake_excel::NewApplication();
    fake_excel::Log(L"created");
    const HRESULT code = application->QueryInterface(iid, out);
    application->Release();
    return code;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    if (lock) {
      fake_excel::AddServerReference();
    } else {
      fake_excel::ReleaseServerReference();
    }
    return S_OK;
  }
};

bool Starts(const std::wstring& arg, const wchar_t* prefix, std::wstring* rest) {
  const std::wstring p(prefix);
  if (arg.compare(0, p.size(), p) != 0) return false;
  *rest = arg.substr(p.size());
  return true;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
  int argc = 0;
  wchar_t** argv = CommandLineToArgvW(GetCommandLineW(), &argc);
  bool embedding = false, active = false, plain = false;
  for (int i = 1; argv && i < argc; ++i) {
    const std::wstring arg = argv[i];
    std::wstring value;
    if (Starts(arg, L"--log=", &value)) {
      fake_excel::Settings().logFile = value;
    } else if (Starts(arg, L"--fail-lookup=", &value)) {
      fake_excel::Settings().failLookup.insert(value);
    } else if (Starts(arg, L"--fail-invoke=", &value)) {
      fake_excel::Settings().failInvoke.insert(value);
    } else if (arg == L"--active") {
      active = true;
    } else if (arg == L"--active-plain") {
      plain = true;
    } else if (arg == L"-Embedding" || arg == L"/Embedding") {
      embedding = true;
    }
  }
  LocalFree(argv);

  if (FAILED(CoInitialize(nullptr))) return 2;
  fake_excel::SetMainThread(GetCurrentThreadId());
  // A message queue exists before anyone can post WM_QUIT to this thread.
  MSG message;
  PeekMessageW(&message, nullptr, WM_USER, WM_USER, PM_NOREMOVE);
  fake_excel::Log(L"start " + std::to_wstring(GetCurrentProcessId()) + L" " + std::to_wstring(GetCurrentThreadId()) +
                  (embedding ? L" embedding" : active ? L" active" : plain ? L" plain" : L" idle"));

  Factory factory;
  DWORD classCookie = 0, activeCookie = 0;
  HRESULT code = S_OK;
  if (embedding) {
    code = CoRegisterClassObject(fake_excel::kClassId, &factory, CLSCTX_LOCAL_SERVER, REGCLS_SINGLEUSE, &classCookie);
  } else if (active || plain) {
    IUnknown* object = active ? static_cast<IUnknown*>(fake_excel::NewApplication()) : fake_excel::NewPlainObject();
    code = RegisterActiveObject(object, fake_excel::kClassId, ACTIVEOBJECT_STRONG, &activeCookie);
    // The running-object table holds its own reference now.
    object->Release();
    if (SUCCEEDED(code)) fake_excel::SetActiveRegistration(activeCookie);
  }
  fake_excel::Log(SUCCEEDED(code) ? L"ready" : L"registration failed");

  if (SUCCEEDED(code)) {
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
  if (classCookie) CoRevokeClassObject(classCookie);
  // Told to stop from outside (the test's teardown): leave the table clean.
  fake_excel::RevokeActive();
  fake_excel::Log(L"exit");
  CoUninitialize();
  return SUCCEEDED(code) ? 0 : 1;
}
