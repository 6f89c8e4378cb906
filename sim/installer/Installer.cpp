#include "Installer.h"

#include "Report.h"
#include "SimState.h"

#include "LumavenRapidJson.h"

#include <windows.h>

#include <fstream>
#include <memory>
#include <sstream>

namespace LumavenSim {

const std::vector<std::wstring> kManagedLibraries = {L"ControlLib.dll", L"atiadlxx.dll", L"atiadlxy.dll",
                                                     L"amdadlx64.dll", L"dxgi.dll"};

namespace {

constexpr wchar_t kDisplayEnumKey[] = L"System\\CurrentControlSet\\Enum\\DISPLAY";
constexpr wchar_t kMonitorClassGuid[] = L"{4D36E96E-E325-11CE-BFC1-08002BE10318}";
// Marks the monitor keys this installer made, so the next profile can remove them.
constexpr wchar_t kSimMarker[] = L"LumavenSim";
// Wine's own dxgi.dll is kept under this name while the fake one is installed.
constexpr wchar_t kWineDxgiBackup[] = L"dxgi.dll.wine";
// Where Wine reads the per-prefix library overrides at every process start.
constexpr wchar_t kWineDllOverridesKey[] = L"Software\\Wine\\DllOverrides";
// The fake libraries' folder beside the installer: its name in a package, and in a build tree.
constexpr const wchar_t* kFakeLibraryFolders[] = {L"fake-vendor-libraries", L"sim"};

struct KeyCloser {
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using Key = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

std::wstring Widen(const std::string& text)
{
    if (text.empty()) {
        return {};
    }
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(), length);
    return wide;
}

std::string Narrow(const std::wstring& text)
{
    if (text.empty()) {
        return {};
    }
    const int length =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), narrow.data(), length, nullptr,
                        nullptr);
    return narrow;
}

std::wstring ExecutableDirectory()
{
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring directory(path, length);
    return directory.substr(0, directory.find_last_of(L"\\/"));
}

std::wstring System32()
{
    wchar_t path[MAX_PATH];
    const UINT length = GetSystemDirectoryW(path, MAX_PATH);
    return std::wstring(path, length);
}

Key OpenKey(HKEY root, const std::wstring& path, REGSAM access = KEY_ALL_ACCESS)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path.c_str(), 0, access, &key) != ERROR_SUCCESS) {
        return nullptr;
    }
    return Key(key);
}

Key CreateKey(HKEY root, const std::wstring& path)
{
    HKEY key = nullptr;
    if (RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) != ERROR_SUCCESS) {
        return nullptr;
    }
    return Key(key);
}

std::vector<std::wstring> SubkeyNames(HKEY key)
{
    std::vector<std::wstring> names;
    wchar_t name[256];
    for (DWORD index = 0;; ++index) {
        DWORD length = 256;
        if (RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
            break;
        }
        names.emplace_back(name, length);
    }
    return names;
}

void RemoveSimMonitors()
{
    const Key display = OpenKey(HKEY_LOCAL_MACHINE, kDisplayEnumKey);
    if (!display) {
        return;
    }
    for (const std::wstring& model : SubkeyNames(display.get())) {
        const Key modelKey = OpenKey(display.get(), model);
        if (modelKey &&
            RegQueryValueExW(modelKey.get(), kSimMarker, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS) {
            RegDeleteTreeW(display.get(), model.c_str());
        }
    }
}

void SetString(HKEY key, const wchar_t* name, const std::wstring& value)
{
    RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                   static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

std::vector<uint8_t> MonitorEdid(const rapidjson::Value& monitor)
{
    if (monitor.HasMember("edid") && monitor["edid"].IsString()) {
        return HexToBytes(monitor["edid"].GetString());
    }
    const size_t length =
        monitor.HasMember("edidLength") && monitor["edidLength"].IsUint() ? monitor["edidLength"].GetUint() : 128;
    const std::string panel =
        monitor.HasMember("panel") && monitor["panel"].IsString() ? monitor["panel"].GetString() : "00000000";
    return MakeEdid(HexToBytes(panel), length);
}

bool InstallMonitors(const rapidjson::Value& monitors, std::string& error)
{
    RemoveSimMonitors();
    if (!monitors.IsArray()) {
        return true;
    }
    unsigned number = 0;
    for (const auto& monitor : monitors.GetArray()) {
        ++number;
        wchar_t defaultModel[16];
        swprintf(defaultModel, 16, L"LSIM%04u", number);
        const std::wstring model = monitor.HasMember("model") && monitor["model"].IsString()
                                       ? Widen(monitor["model"].GetString())
                                       : defaultModel;
        const std::wstring modelPath = std::wstring(kDisplayEnumKey) + L"\\" + model;
        const Key modelKey = CreateKey(HKEY_LOCAL_MACHINE, modelPath);
        const Key instance = CreateKey(HKEY_LOCAL_MACHINE, modelPath + L"\\1&0");
        const Key parameters = CreateKey(HKEY_LOCAL_MACHINE, modelPath + L"\\1&0\\Device Parameters");
        if (!modelKey || !instance || !parameters) {
            error = "cannot create the monitor keys under HKLM\\System\\CurrentControlSet\\Enum\\DISPLAY";
            return false;
        }
        const DWORD one = 1;
        RegSetValueExW(modelKey.get(), kSimMarker, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&one), sizeof one);
        SetString(instance.get(), L"ClassGUID", kMonitorClassGuid);
        SetString(instance.get(), L"Class", L"Monitor");
        SetString(instance.get(), L"DeviceDesc", L"Simulated panel");
        const std::vector<uint8_t> edid = MonitorEdid(monitor);
        RegSetValueExW(parameters.get(), L"EDID", 0, REG_BINARY, edid.data(), static_cast<DWORD>(edid.size()));
    }
    return true;
}

bool SameContent(const std::wstring& a, const std::wstring& b)
{
    std::ifstream first(a.c_str(), std::ios::binary);
    std::ifstream second(b.c_str(), std::ios::binary);
    if (!first || !second) {
        return false;
    }
    std::ostringstream x;
    std::ostringstream y;
    x << first.rdbuf();
    y << second.rdbuf();
    return x.str() == y.str();
}

// Moves a file out of the way. A library that a running process still has mapped can be
// neither overwritten nor deleted, but it can be renamed: the process keeps its mapping and
// the name is free for the next driver. Moved files are swept by later installs.
bool RemoveFile(const std::wstring& target)
{
    if (DeleteFileW(target.c_str()) || GetLastError() == ERROR_FILE_NOT_FOUND) {
        return true;
    }
    const std::wstring aside = target + L"." + std::to_wstring(GetTickCount64()) + L".stale";
    return MoveFileExW(target.c_str(), aside.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

void SweepStaleFiles(const std::wstring& directory)
{
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW((directory + L"\\*.stale").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return;
    }
    do {
        DeleteFileW((directory + L"\\" + found.cFileName).c_str());  // still mapped ones stay
    } while (FindNextFileW(search, &found));
    FindClose(search);
}

// An identical library is left alone.
bool PlaceFile(const std::wstring& source, const std::wstring& target)
{
    if (SameContent(source, target)) {
        return true;
    }
    return RemoveFile(target) && CopyFileW(source.c_str(), target.c_str(), FALSE) != 0;
}

// The fake dxgi.dll in system32 has the name of one of Wine's own libraries, which Wine loads
// from itself unless the prefix says otherwise. "native,builtin": the fake when it is there;
// Wine's own, which is marked builtin and refused as native, when the profile has none, so
// that Wine's WMI provider, which imports dxgi.dll, still loads.
bool PreferNativeDxgi(std::string& error)
{
    const Key overrides = CreateKey(HKEY_CURRENT_USER, kWineDllOverridesKey);
    if (!overrides) {
        error = "cannot create HKCU\\Software\\Wine\\DllOverrides";
        return false;
    }
    SetString(overrides.get(), L"dxgi", L"native,builtin");
    return true;
}

// The fake libraries beside the installer, in the package's folder or the build tree's.
std::wstring FakeLibraryDirectory()
{
    const std::wstring here = ExecutableDirectory();
    for (const wchar_t* folder : kFakeLibraryFolders) {
        const std::wstring candidate = here + L"\\" + folder;
        if (GetFileAttributesW(candidate.c_str()) != INVALID_FILE_ATTRIBUTES) {
            return candidate;
        }
    }
    return here + L"\\" + kFakeLibraryFolders[0];
}

bool InstallLibraries(const rapidjson::Value* libraries, const std::wstring& simDlls, std::string& error)
{
    if (!PreferNativeDxgi(error)) {
        return false;
    }
    const std::wstring system32 = System32();
    SweepStaleFiles(system32);
    const std::wstring wineDxgi = system32 + L"\\" + kWineDxgiBackup;
    if (GetFileAttributesW(wineDxgi.c_str()) == INVALID_FILE_ATTRIBUTES) {
        CopyFileW((system32 + L"\\dxgi.dll").c_str(), wineDxgi.c_str(), TRUE);
    }
    for (const std::wstring& name : kManagedLibraries) {
        const std::string narrowName = Narrow(name);
        const std::wstring target = system32 + L"\\" + name;
        const bool wanted = libraries != nullptr && libraries->IsObject() && libraries->HasMember(narrowName.c_str()) &&
                            (*libraries)[narrowName.c_str()].IsString();
        if (wanted) {
            const std::wstring source = simDlls + L"\\" + Widen((*libraries)[narrowName.c_str()].GetString());
            if (!PlaceFile(source, target)) {
                error = "cannot install " + Narrow(source) + " as " + Narrow(target);
                return false;
            }
        } else if (name == L"dxgi.dll") {
            PlaceFile(wineDxgi, target);
        } else if (!RemoveFile(target)) {
            error = "cannot remove " + Narrow(target);
            return false;
        }
    }
    return true;
}

std::string Pretty(const rapidjson::Value& value)
{
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    value.Accept(writer);
    return buffer.GetString();
}

}  // namespace

std::vector<uint8_t> MakeEdid(const std::vector<uint8_t>& bytes8to11, size_t length)
{
    std::vector<uint8_t> edid(128, 0);
    const uint8_t header[8] = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
    std::copy(std::begin(header), std::end(header), edid.begin());
    for (size_t i = 0; i < 4 && i < bytes8to11.size(); ++i) {
        edid[8 + i] = bytes8to11[i];
    }
    edid[18] = 1;  // EDID 1.4
    edid[19] = 4;
    edid[126] = length > 128 ? static_cast<uint8_t>((length - 128) / 128) : 0;
    unsigned sum = 0;
    for (size_t i = 0; i < 127; ++i) {
        sum += edid[i];
    }
    edid[127] = static_cast<uint8_t>((256 - sum % 256) % 256);
    for (size_t i = 128; i < length; ++i) {
        edid.push_back(static_cast<uint8_t>(0xA0 + i % 16));
    }
    edid.resize(length);
    return edid;
}

InstallResult InstallProfile(const std::string& profileText, const std::wstring& simDllDirectory)
{
    InstallResult result;
    if (!RunningUnderWine()) {
        result.error = "refusing to install: this is not a Wine prefix (the fakes carry real driver names)";
        return result;
    }
    rapidjson::Document profile;
    profile.Parse(profileText.c_str());
    if (profile.HasParseError() || !profile.IsObject()) {
        result.error = "the profile is not a JSON object";
        return result;
    }
    const rapidjson::Value none;
    if (!InstallMonitors(profile.HasMember("monitors") ? profile["monitors"] : none, result.error)) {
        return result;
    }
    const std::wstring simDlls = simDllDirectory.empty() ? FakeLibraryDirectory() : simDllDirectory;
    if (!InstallLibraries(profile.HasMember("libraries") ? &profile["libraries"] : nullptr, simDlls, result.error)) {
        return result;
    }
    ResetState(profile);
    result.ok = true;
    return result;
}

InstallResult InstallProfileFile(const std::wstring& path, const std::wstring& simDllDirectory)
{
    std::ifstream in(path.c_str(), std::ios::binary);
    if (!in) {
        return {false, "cannot read the profile " + Narrow(path)};
    }
    std::ostringstream text;
    text << in.rdbuf();
    return InstallProfile(text.str(), simDllDirectory);
}

std::string Describe()
{
    std::ostringstream out;
    out << "monitors:\n";
    if (const Key display = OpenKey(HKEY_LOCAL_MACHINE, kDisplayEnumKey, KEY_READ)) {
        for (const std::wstring& model : SubkeyNames(display.get())) {
            const Key parameters = OpenKey(display.get(), model + L"\\1&0\\Device Parameters", KEY_READ);
            uint8_t edid[512];
            DWORD size = sizeof edid;
            if (parameters &&
                RegQueryValueExW(parameters.get(), L"EDID", nullptr, nullptr, edid, &size) == ERROR_SUCCESS) {
                out << "  " << Narrow(model) << ": EDID " << size << " bytes, bytes 8..11 "
                    << (size >= 12 ? BytesToHex(edid + 8, 4) : std::string("(short)")) << "\n";
            } else {
                out << "  " << Narrow(model) << ": no EDID\n";
            }
        }
    }
    out << "libraries in system32:\n";
    for (const std::wstring& name : kManagedLibraries) {
        const bool present = GetFileAttributesW((System32() + L"\\" + name).c_str()) != INVALID_FILE_ATTRIBUTES;
        out << "  " << Narrow(name) << ": " << (present ? "present" : "absent") << "\n";
    }
    out << DescribeDrivers();
    WithState([&out](rapidjson::Document& state) {
        out << "state:\n" << Pretty(state) << "\n";
        return false;
    });
    out << "transactions:\n" << DescribeTransactions(false);
    return out.str();
}

}  // namespace LumavenSim
