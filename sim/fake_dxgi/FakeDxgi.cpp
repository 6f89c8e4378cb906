// The simulated GPU. Wine's WMI provider fills Win32_VideoController from DXGI: it creates a
// factory, takes the first adapter and uses its description as the controller's name. This
// dxgi.dll answers with one adapter built from the installed machine profile ("gpuName",
// optional "gpuVendorId" and "gpuDeviceId" as hex), or with no adapter when the profile names
// no GPU. Only what an adapter enumeration needs is implemented; the rest of the interfaces
// answer E_NOTIMPL.
//
// The profile is read on every enumeration, never cached: once Wine's WMI provider has
// loaded the library it stays loaded for the life of the process, while tests install other
// profiles. Each call is counted (so a profile can inject a failure into it) and written to
// the transaction log.
#include "SimState.h"
#include "Transaction.h"

#include "LumavenRapidJson.h"

#include <windows.h>
#include <dxgi1_3.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

namespace {

// DXGI's own answer when an adapter index is past the last adapter.
constexpr HRESULT kNotFound = static_cast<HRESULT>(0x887A0002);  // DXGI_ERROR_NOT_FOUND
// Real drivers report at least this much dedicated memory; Wine shows it as AdapterRAM.
constexpr SIZE_T kDedicatedVideoMemory = 512u * 1024u * 1024u;

struct AdapterProfile {
    std::wstring description;
    UINT vendorId = 0;
    UINT deviceId = 0;
};

std::wstring Widen(const char* text)
{
    const int length = MultiByteToWideChar(CP_UTF8, 0, text, -1, nullptr, 0);
    if (length <= 1) {
        return {};
    }
    std::wstring wide(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text, -1, wide.data(), length);
    wide.resize(static_cast<size_t>(length) - 1);
    return wide;
}

UINT HexMember(const rapidjson::Value& state, const char* name)
{
    if (!state.HasMember(name) || !state[name].IsString()) {
        return 0;
    }
    return static_cast<UINT>(std::strtoul(state[name].GetString(), nullptr, 16));
}

// The profile's GPU exists only when the profile installs this library. A process that
// loaded it under an earlier profile keeps it (Wine's WMI provider never unloads), and it
// then answers as Wine's own DXGI does without a display: with no adapter.
std::optional<AdapterProfile> AdapterOf(const rapidjson::Document& state)
{
    const bool installed =
        state.HasMember("libraries") && state["libraries"].IsObject() && state["libraries"].HasMember("dxgi.dll");
    if (!installed || !state.HasMember("gpuName") || !state["gpuName"].IsString()) {
        return std::nullopt;
    }
    return AdapterProfile{Widen(state["gpuName"].GetString()), HexMember(state, "gpuVendorId"),
                          HexMember(state, "gpuDeviceId")};
}

std::string GuidText(const GUID& guid)
{
    char text[40];
    std::snprintf(text, sizeof text, "{%08lX-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned long>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1],
                  guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return text;
}

// What one call sees of the profile: the failure injected into it, if any, and the adapter.
struct CallView {
    std::optional<HRESULT> fault;
    std::optional<AdapterProfile> adapter;
};

CallView Enter(const char* call)
{
    CallView view;
    LumavenSim::WithState([&](rapidjson::Document& state) {
        if (const std::optional<int64_t> code = LumavenSim::TakeFault(state, call)) {
            view.fault = static_cast<HRESULT>(static_cast<uint32_t>(*code));
        }
        view.adapter = AdapterOf(state);
        return true;  // the call counter moved
    });
    return view;
}

using Texts = std::initializer_list<std::pair<const char*, std::string>>;

// Writes one call to the transaction log and hands back its result.
HRESULT Record(const char* call, HRESULT result, Texts texts = {}, std::optional<UINT> index = std::nullopt)
{
    LumavenSim::Transaction record("dxgi.dll", call);
    for (const auto& [key, text] : texts) {
        record.Text(key, text);
    }
    if (index) {
        record.Unsigned("index", *index);
    }
    // Logged as the unsigned code it is, the way HRESULTs are read.
    record.Done(static_cast<uint32_t>(result));
    return result;
}

template <class Interface>
class RefCounted : public Interface {
public:
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&m_references)); }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const LONG left = InterlockedDecrement(&m_references);
        if (left == 0) {
            delete this;
        }
        return static_cast<ULONG>(left);
    }

    // IDXGIObject: private data is not kept by the simulation.
    HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID, UINT, const void*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID, const IUnknown*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPrivateData(REFGUID, UINT*, void*) override { return E_NOTIMPL; }

protected:
    virtual ~RefCounted() = default;

    // Hands out this object for any of the interface IDs it implements.
    HRESULT Answer(const char* call, REFIID riid, std::initializer_list<GUID> implemented, void** out)
    {
        if (out == nullptr) {
            return Record(call, E_POINTER, {{"iid", GuidText(riid)}});
        }
        for (const GUID& iid : implemented) {
            if (IsEqualGUID(riid, iid)) {
                AddRef();
                *out = static_cast<Interface*>(this);
                return Record(call, S_OK, {{"iid", GuidText(riid)}});
            }
        }
        *out = nullptr;
        return Record(call, E_NOINTERFACE, {{"iid", GuidText(riid)}});
    }

private:
    LONG m_references = 1;
};

class Adapter final : public RefCounted<IDXGIAdapter1> {
public:
    Adapter(IDXGIFactory1* factory, AdapterProfile profile) : m_factory(factory), m_profile(std::move(profile))
    {
        m_factory->AddRef();
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override
    {
        return Answer("IDXGIAdapter::QueryInterface", riid,
                      {__uuidof(IUnknown), __uuidof(IDXGIObject), __uuidof(IDXGIAdapter), __uuidof(IDXGIAdapter1)},
                      out);
    }
    HRESULT STDMETHODCALLTYPE GetParent(REFIID riid, void** parent) override
    {
        return m_factory->QueryInterface(riid, parent);
    }
    HRESULT STDMETHODCALLTYPE EnumOutputs(UINT output, IDXGIOutput** result) override
    {
        if (result != nullptr) {
            *result = nullptr;
        }
        return Record("IDXGIAdapter::EnumOutputs", kNotFound, {}, output);
    }
    HRESULT STDMETHODCALLTYPE GetDesc(DXGI_ADAPTER_DESC* desc) override
    {
        return Describe("IDXGIAdapter::GetDesc", desc, nullptr);
    }
    HRESULT STDMETHODCALLTYPE GetDesc1(DXGI_ADAPTER_DESC1* desc) override
    {
        return Describe("IDXGIAdapter1::GetDesc1", nullptr, desc);
    }
    HRESULT STDMETHODCALLTYPE CheckInterfaceSupport(REFGUID, LARGE_INTEGER*) override { return DXGI_ERROR_UNSUPPORTED; }

private:
    ~Adapter() override { m_factory->Release(); }

    template <class Desc>
    void Fill(Desc& desc) const
    {
        ZeroMemory(&desc, sizeof desc);
        const size_t capacity = sizeof desc.Description / sizeof desc.Description[0];
        const std::wstring name = m_profile.description.substr(0, capacity - 1);
        std::copy(name.begin(), name.end(), desc.Description);
        desc.VendorId = m_profile.vendorId;
        desc.DeviceId = m_profile.deviceId;
        desc.DedicatedVideoMemory = kDedicatedVideoMemory;
        desc.AdapterLuid.LowPart = 0x4C55;  // any stable value; nothing compares it
    }

    HRESULT Describe(const char* call, DXGI_ADAPTER_DESC* desc, DXGI_ADAPTER_DESC1* desc1)
    {
        const CallView view = Enter(call);
        if (view.fault) {
            return Record(call, *view.fault);
        }
        if (desc == nullptr && desc1 == nullptr) {
            return Record(call, E_INVALIDARG);
        }
        desc != nullptr ? Fill(*desc) : Fill(*desc1);
        char utf8[512];
        WideCharToMultiByte(CP_UTF8, 0, m_profile.description.c_str(), -1, utf8, sizeof utf8, nullptr, nullptr);
        return Record(call, S_OK, {{"description", utf8}});
    }

    IDXGIFactory1* m_factory;
    const AdapterProfile m_profile;
};

class Factory final : public RefCounted<IDXGIFactory1> {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override
    {
        return Answer("IDXGIFactory::QueryInterface", riid,
                      {__uuidof(IUnknown), __uuidof(IDXGIObject), __uuidof(IDXGIFactory), __uuidof(IDXGIFactory1)},
                      out);
    }
    HRESULT STDMETHODCALLTYPE GetParent(REFIID, void** parent) override
    {
        if (parent != nullptr) {
            *parent = nullptr;
        }
        return E_NOINTERFACE;
    }
    HRESULT STDMETHODCALLTYPE EnumAdapters(UINT index, IDXGIAdapter** adapter) override
    {
        return Enumerate("IDXGIFactory::EnumAdapters", index, reinterpret_cast<void**>(adapter));
    }
    HRESULT STDMETHODCALLTYPE EnumAdapters1(UINT index, IDXGIAdapter1** adapter) override
    {
        return Enumerate("IDXGIFactory1::EnumAdapters1", index, reinterpret_cast<void**>(adapter));
    }
    HRESULT STDMETHODCALLTYPE MakeWindowAssociation(HWND, UINT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetWindowAssociation(HWND*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateSwapChain(IUnknown*, DXGI_SWAP_CHAIN_DESC*, IDXGISwapChain**) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE CreateSoftwareAdapter(HMODULE, IDXGIAdapter**) override { return E_NOTIMPL; }
    WINBOOL STDMETHODCALLTYPE IsCurrent() override { return TRUE; }

private:
    // Both enumeration methods hand out the same object, which implements IDXGIAdapter1.
    HRESULT Enumerate(const char* call, UINT index, void** adapter)
    {
        if (adapter == nullptr) {
            return Record(call, E_INVALIDARG, {}, index);
        }
        *adapter = nullptr;
        const CallView view = Enter(call);
        if (view.fault) {
            return Record(call, *view.fault, {}, index);
        }
        if (!view.adapter || index > 0) {
            return Record(call, kNotFound, {}, index);
        }
        *adapter = static_cast<IDXGIAdapter1*>(new Adapter(this, *view.adapter));
        return Record(call, S_OK, {}, index);
    }
};

HRESULT CreateFactory(const char* call, REFIID riid, void** factory)
{
    if (factory == nullptr) {
        return Record(call, E_INVALIDARG);
    }
    *factory = nullptr;
    const CallView view = Enter(call);
    if (view.fault) {
        return Record(call, *view.fault, {{"iid", GuidText(riid)}});
    }
    Record(call, S_OK, {{"iid", GuidText(riid)}});
    auto* created = new Factory;
    const HRESULT result = created->QueryInterface(riid, factory);
    created->Release();
    return result;
}

}  // namespace

extern "C" HRESULT WINAPI CreateDXGIFactory(REFIID riid, void** factory)
{
    return CreateFactory("CreateDXGIFactory", riid, factory);
}

extern "C" HRESULT WINAPI CreateDXGIFactory1(REFIID riid, void** factory)
{
    return CreateFactory("CreateDXGIFactory1", riid, factory);
}

extern "C" HRESULT WINAPI CreateDXGIFactory2(UINT flags, REFIID riid, void** factory)
{
    (void)flags;
    return CreateFactory("CreateDXGIFactory2", riid, factory);
}

// A profile can make the library fail to load ({"function": "DllMain", ...}), as a broken
// driver installation would; whatever imports it then fails to load as well.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    if (reason != DLL_PROCESS_ATTACH) {
        return TRUE;
    }
    const CallView view = Enter("DllMain");
    Record("DllMain", view.fault ? *view.fault : S_OK);
    return view.fault ? FALSE : TRUE;
}
