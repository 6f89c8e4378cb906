// The WMI query helper against Wine's real WMI service. Wine's provider names the one video
// controller it reports after the first DXGI adapter, which the simulated GPU (the fake
// dxgi.dll a profile installs) supplies from the profile's "gpuName".
#include "ComThread.h"
#include "LogCapture.h"
#include "SimGpu.h"
#include "SimMachine.h"

#include "inspect/PublicWmi.h"
#include "service/Json.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>
#include <oleauto.h>
#include <wbemidl.h>

#include <cwchar>
#include <string>
#include <vector>

using namespace Xelto::Spanlet::Server::Shared::WMI;
using LumavenTest::InstallGpu;
using LumavenTest::LogCapture;
using LumavenTest::OnFreshThread;
using LumavenTest::ThreadIsOutsideCom;
using Xelto::Logging::Level;
using Xelto::Spanlet::Server::Services::Lumaven::JsonText;
using Xelto::Spanlet::Server::Services::Lumaven::WriteCompact;

namespace {

constexpr wchar_t kVideoController[] = L"Win32_VideoController";

std::wstring Warning(const wchar_t* operation, const wchar_t* label, uint32_t result)
{
    wchar_t hex[16];
    std::swprintf(hex, 16, L"%x", result);
    return std::wstring(L"class Xelto::Spanlet::Server::Shared::WMI::PublicWmi.") + operation +
           L" - failed on function " + label + L" with HRESULT 0x" + hex;
}

std::wstring Compact(const Document& document)
{
    JsonText out;
    WriteCompact(document, out);
    return out.GetString();
}

Document EmptyObject()
{
    Document document;
    document.SetObject();
    return document;
}

std::vector<LumavenTest::LogRecord> Warnings(const LogCapture& capture)
{
    std::vector<LumavenTest::LogRecord> warnings;
    for (const auto& record : capture.Records()) {
        if (record.level == Level::Warning) {
            warnings.push_back(record);
        }
    }
    return warnings;
}

// The string arrays WMI holds for a property, read directly through the enumerator, in
// enumeration order; instances whose value is not a string array are left out.
std::vector<std::vector<std::wstring>> StringArraysOf(const wchar_t* className, const wchar_t* propertyName)
{
    std::vector<std::vector<std::wstring>> arrays;
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    {
        uint32_t status = StatusInvalidArgument;
        PublicWmi wmi;
        const auto enumerator = wmi.EnumClassObject(className, status);
        EXPECT_TRUE(enumerator);
        for (ULONG returned = 1; enumerator && returned == 1;) {
            Microsoft::WRL::ComPtr<IWbemClassObject> object;
            if (FAILED(enumerator->Next(WBEM_INFINITE, 1, &object, &returned)) || returned == 0) {
                break;
            }
            VARIANT value;
            VariantInit(&value);
            if (SUCCEEDED(object->Get(propertyName, 0, &value, nullptr, nullptr)) && value.vt == (VT_ARRAY | VT_BSTR)) {
                LONG low = 0;
                LONG high = -1;
                SafeArrayGetLBound(value.parray, 1, &low);
                SafeArrayGetUBound(value.parray, 1, &high);
                std::vector<std::wstring> texts;
                for (LONG index = low; index <= high; ++index) {
                    BSTR text = nullptr;
                    SafeArrayGetElement(value.parray, &index, &text);
                    texts.emplace_back(text != nullptr ? text : L"");
                    SysFreeString(text);
                }
                arrays.push_back(texts);
            }
            VariantClear(&value);
        }
    }
    CoUninitialize();
    return arrays;
}

// A one-dimensional SAFEARRAY, destroyed with its elements at the end of the test.
class TestArray {
public:
    TestArray(VARTYPE elementType, ULONG count, LONG lowerBound = 0)
    {
        SAFEARRAYBOUND bound{count, lowerBound};
        m_array = SafeArrayCreate(elementType, 1, &bound);
        VariantInit(&m_value);
        m_value.vt = static_cast<VARTYPE>(VT_ARRAY | elementType);
        m_value.parray = m_array;
    }
    ~TestArray()
    {
        if (m_array != nullptr) {
            SafeArrayDestroy(m_array);
        }
    }
    TestArray(const TestArray&) = delete;
    TestArray& operator=(const TestArray&) = delete;

    void Put(LONG index, void* element) { EXPECT_EQ(SafeArrayPutElement(m_array, &index, element), S_OK); }
    const VARIANT& value() const { return m_value; }
    // Destroying answers DISP_E_ARRAYISLOCKED while the data is still accessed.
    HRESULT Destroy()
    {
        const HRESULT result = SafeArrayDestroy(m_array);
        if (SUCCEEDED(result)) {
            m_array = nullptr;
        }
        return result;
    }

private:
    SAFEARRAY* m_array = nullptr;
    VARIANT m_value;
};

}  // namespace

// ---- HRESULT to status, on the mapping itself: Wine never answers Next with these codes.

TEST(WmiStatusMapping, StatusValues)
{
    EXPECT_EQ(StatusWmiPropertyNotFound, 0x2000000du);
    EXPECT_EQ(StatusWmiInvalidClass, 0x2000000fu);
    EXPECT_EQ(StatusWmiInvalidQuery, 0x20000010u);
    EXPECT_EQ(StatusWmiInvalidNamespace, 0x20000012u);
}

TEST(WmiStatusMapping, NextInvalidClassAndInvalidQueryHaveTheirOwnStatus)
{
    for (const uint32_t before : {StatusInvalidArgument, StatusSuccess}) {
        EXPECT_EQ(StatusAfterNextFailure(static_cast<HRESULT>(WBEM_E_INVALID_CLASS), before), 0x2000000fu);
        EXPECT_EQ(StatusAfterNextFailure(static_cast<HRESULT>(WBEM_E_INVALID_QUERY), before), 0x20000010u);
    }
}

TEST(WmiStatusMapping, OtherNextFailuresKeepTheStatus)
{
    for (const HRESULT other :
         {static_cast<HRESULT>(WBEM_E_FAILED), static_cast<HRESULT>(WBEM_E_NOT_FOUND),
          static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE), static_cast<HRESULT>(WBEM_E_TRANSPORT_FAILURE), E_FAIL,
          E_OUTOFMEMORY, RPC_E_DISCONNECTED}) {
        EXPECT_EQ(StatusAfterNextFailure(other, StatusInvalidArgument), StatusInvalidArgument) << std::hex << other;
        EXPECT_EQ(StatusAfterNextFailure(other, StatusSuccess), StatusSuccess) << std::hex << other;
    }
}

TEST(WmiStatusMapping, GetNotFoundIsPropertyNotFoundAndOtherFailuresKeepTheStatus)
{
    EXPECT_EQ(StatusAfterGetFailure(static_cast<HRESULT>(WBEM_E_NOT_FOUND), StatusInvalidArgument), 0x2000000du);
    EXPECT_EQ(StatusAfterGetFailure(static_cast<HRESULT>(WBEM_E_NOT_FOUND), StatusSuccess), 0x2000000du);
    for (const HRESULT other : {static_cast<HRESULT>(WBEM_E_INVALID_CLASS), static_cast<HRESULT>(WBEM_E_INVALID_QUERY),
                                static_cast<HRESULT>(WBEM_E_FAILED), E_INVALIDARG}) {
        EXPECT_EQ(StatusAfterGetFailure(other, StatusInvalidArgument), StatusInvalidArgument) << std::hex << other;
        EXPECT_EQ(StatusAfterGetFailure(other, StatusSuccess), StatusSuccess) << std::hex << other;
    }
}

TEST(WmiStatusMapping, OnlyAMissingNamespaceChangesTheConnectStatus)
{
    EXPECT_EQ(StatusAfterConnectFailure(static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE), StatusInvalidArgument),
              0x20000012u);
    for (const HRESULT other :
         {static_cast<HRESULT>(WBEM_E_ACCESS_DENIED), static_cast<HRESULT>(WBEM_E_NOT_FOUND), E_FAIL}) {
        EXPECT_EQ(StatusAfterConnectFailure(other, StatusInvalidArgument), StatusInvalidArgument) << std::hex << other;
    }
}

TEST(WmiStatusMapping, SecurityAlreadySetIsNotWorthAWarning)
{
    for (const HRESULT quiet : {RPC_E_TOO_LATE, S_OK, S_FALSE}) {
        EXPECT_FALSE(SecurityFailureIsLogged(quiet)) << std::hex << quiet;
    }
    for (const HRESULT failure : {E_FAIL, E_OUTOFMEMORY, RPC_E_NO_GOOD_SECURITY_PACKAGES}) {
        EXPECT_TRUE(SecurityFailureIsLogged(failure)) << std::hex << failure;
    }
}

// ---- End to end through Wine's WMI.

TEST(PublicWmi, ReadsTheSimulatedControllerName)
{
    InstallGpu("Intel(R) Iris(R) Xe Graphics");
    LogCapture capture;
    PublicWmi wmi;
    Document response = EmptyObject();
    EXPECT_EQ(wmi.GetPropertyValue(kVideoController, L"Name", response), StatusSuccess);
    EXPECT_EQ(Compact(response), LR"({"result":["Intel(R) Iris(R) Xe Graphics"]})");
    EXPECT_THAT(capture.Texts(), testing::IsEmpty());

    // The name came from the simulated driver: Wine asked the fake for its first adapter.
    EXPECT_THAT(LumavenTest::DescribedAdapters(), testing::ElementsAre("Intel(R) Iris(R) Xe Graphics"));
}

// A caller may hand a document that is not an object yet (a default one is null): the result
// still lands in an object instead of in a value that cannot hold members.
TEST(PublicWmi, AResponseThatIsNotYetAnObjectStillGetsItsResult)
{
    InstallGpu("Intel(R) Iris(R) Xe Graphics");
    PublicWmi wmi;
    Document response;
    ASSERT_TRUE(response.IsNull());
    EXPECT_EQ(wmi.GetPropertyValue(kVideoController, L"Name", response), StatusSuccess);
    EXPECT_EQ(Compact(response), LR"({"result":["Intel(R) Iris(R) Xe Graphics"]})");
}

TEST(PublicWmi, ANullNamespaceIsTheDefaultOne)
{
    InstallGpu("Intel(R) Iris(R) Xe Graphics");
    LogCapture capture;
    PublicWmi wmi(nullptr);
    Document response = EmptyObject();
    EXPECT_EQ(wmi.GetPropertyValue(kVideoController, L"Name", response), StatusSuccess);
    EXPECT_EQ(Compact(response), LR"({"result":["Intel(R) Iris(R) Xe Graphics"]})");
    EXPECT_THAT(capture.Texts(), testing::IsEmpty());
}

TEST(PublicWmi, ALaterQueryInTheSameProcessSeesAChangedProfile)
{
    for (const char* name :
         {"Intel(R) Iris(R) Xe Graphics", "AMD Radeon(TM) Graphics", "Microsoft Basic Display Adapter"}) {
        InstallGpu(name);
        PublicWmi wmi;
        Document response = EmptyObject();
        EXPECT_EQ(wmi.GetPropertyValue(kVideoController, L"Name", response), StatusSuccess);
        const std::string expected = std::string(R"({"result":[")") + name + R"("]})";
        EXPECT_EQ(Compact(response), std::wstring(expected.begin(), expected.end()));
    }
}

TEST(PublicWmi, ValuesOfSeveralInstancesKeepTheEnumerationOrder)
{
    // Wine reports one video controller only; the test prefix has two drives, C: and Z:.
    PublicWmi wmi;
    Document response = EmptyObject();
    EXPECT_EQ(wmi.GetPropertyValue(L"Win32_LogicalDisk", L"Name", response), StatusSuccess);
    EXPECT_EQ(Compact(response), LR"({"result":["C:","Z:"]})");
    Document types = EmptyObject();
    EXPECT_EQ(wmi.GetPropertyValue(L"Win32_LogicalDisk", L"DriveType", types), StatusSuccess);
    EXPECT_EQ(Compact(types), LR"({"result":[3,3]})");  // integers stay integers
}

TEST(PublicWmi, BooleansBecomeJsonBooleans)
{
    PublicWmi wmi;
    Document primary = EmptyObject();
    EXPECT_EQ(wmi.GetPropertyValue(L"Win32_OperatingSystem", L"Primary", primary), StatusSuccess);
    EXPECT_EQ(Compact(primary), LR"({"result":[true]})");
    Document lock = EmptyObject();
    EXPECT_EQ(wmi.GetPropertyValue(L"Win32_SystemEnclosure", L"LockPresent", lock), StatusSuccess);
    EXPECT_EQ(Compact(lock), LR"({"result":[false]})");
}

TEST(PublicWmi, SecuritySetBeforeGivesNoWarning)
{
    InstallGpu("AMD Radeon(TM) Graphics");
    OnFreshThread([] {
        ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        // Windows answers the helper's own call with RPC_E_TOO_LATE after this one; Wine
        // answers S_OK every time. Either way the query proceeds without a warning.
        CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT, RPC_C_IMP_LEVEL_IMPERSONATE,
                             nullptr, EOAC_NONE, nullptr);
        LogCapture capture;
        PublicWmi wmi;
        Document response = EmptyObject();
        EXPECT_EQ(wmi.GetPropertyValue(kVideoController, L"Name", response), StatusSuccess);
        EXPECT_EQ(Compact(response), LR"({"result":["AMD Radeon(TM) Graphics"]})");
        EXPECT_THAT(capture.Texts(), testing::IsEmpty());
        CoUninitialize();
    });
}

TEST(PublicWmi, IntegerArrayPropertyBecomesANestedArray)
{
    // Wine reports one system enclosure with one chassis type.
    PublicWmi wmi;
    Document response = EmptyObject();
    ASSERT_EQ(wmi.GetPropertyValue(L"Win32_SystemEnclosure", L"ChassisTypes", response), StatusSuccess);
    const JsonArray& result = response[L"result"];
    ASSERT_EQ(result.Size(), 1u);
    ASSERT_TRUE(result[0].IsArray());
    ASSERT_GE(result[0].Size(), 1u);
    for (const JsonArray& type : result[0].GetArray()) {
        EXPECT_TRUE(type.IsInt());
    }
}

TEST(PublicWmi, StringArrayPropertiesBecomeNestedArraysAndNullValuesAreSkipped)
{
    // Wine fills the adapters' addresses from the host's network interfaces; an adapter
    // without an address has a null value, which the helper skips.
    const wchar_t* const className = L"Win32_NetworkAdapterConfiguration";
    const auto expected = StringArraysOf(className, L"IPAddress");
    if (expected.empty()) {
        GTEST_SKIP() << "no network adapter with an address on this machine";
    }
    PublicWmi wmi;
    Document response = EmptyObject();
    ASSERT_EQ(wmi.GetPropertyValue(className, L"IPAddress", response), StatusSuccess);
    const JsonArray& result = response[L"result"];
    ASSERT_EQ(result.Size(), expected.size());
    for (rapidjson::SizeType i = 0; i < result.Size(); ++i) {
        ASSERT_TRUE(result[i].IsArray());
        ASSERT_EQ(result[i].Size(), expected[i].size());
        for (rapidjson::SizeType j = 0; j < result[i].Size(); ++j) {
            EXPECT_EQ(std::wstring(result[i][j].GetString()), expected[i][j]);
        }
    }
}

// ---- Queries that end without a "result": the status, and the warnings in their one shape.

struct WithoutResult {
    const char* name;
    const wchar_t* className;
    const wchar_t* propertyName;
    const wchar_t* wmiNamespace;
    uint32_t status;
    std::vector<std::wstring> warnings;
};

class PublicWmiWithoutResult : public testing::TestWithParam<WithoutResult> {};

TEST_P(PublicWmiWithoutResult, GivesItsStatusAndWarnings)
{
    InstallGpu("Intel(R) Iris(R) Xe Graphics");
    const WithoutResult& query = GetParam();
    LogCapture capture;
    PublicWmi wmi(query.wmiNamespace);
    Document response = EmptyObject();
    EXPECT_EQ(wmi.GetPropertyValue(query.className, query.propertyName, response), query.status);
    EXPECT_EQ(Compact(response), L"{}");
    EXPECT_THAT(capture.Texts(), testing::ElementsAreArray(query.warnings));
    for (const auto& record : capture.Records()) {
        EXPECT_EQ(record.level, Level::Warning);
        // The context word is the address of an empty wide text.
        ASSERT_NE(record.context, 0u);
        EXPECT_EQ(*reinterpret_cast<const wchar_t*>(record.context), L'\0');
    }
}

INSTANTIATE_TEST_SUITE_P(
    Wine, PublicWmiWithoutResult,
    testing::Values(
        WithoutResult{"MissingProperty",
                      kVideoController,
                      L"NoSuchProperty",
                      kDefaultWmiNamespace,
                      StatusWmiPropertyNotFound,
                      {Warning(L"GetPropertyValue", L"IWbemClassObject->Get", 0x80041002)}},
        WithoutResult{"MissingNamespace",
                      kVideoController,
                      L"Name",
                      L"ROOT\\NoSuchNamespace",
                      StatusWmiInvalidNamespace,
                      {Warning(L"ConnectToWmi", L"IWbemLocator->ConnectServer(WmiNamespace)", 0x8004100e)}},
        // The test prefix maps no CD-ROM drive.
        WithoutResult{
            "ClassWithoutInstances", L"Win32_CDROMDrive", L"Name", kDefaultWmiNamespace, StatusInvalidArgument, {}},
        // Windows fails Next with WBEM_E_INVALID_CLASS here (StatusWmiInvalidClass, tested on
        // the mapping); Wine answers with an empty result set.
        WithoutResult{"UnknownClass", L"Win32_NoSuchClass", L"Name", kDefaultWmiNamespace, StatusInvalidArgument, {}},
        // Wine refuses to list Win32_SID without a condition that names the SID.
        WithoutResult{"FailedQuery",
                      L"Win32_SID",
                      L"SID",
                      kDefaultWmiNamespace,
                      StatusInvalidArgument,
                      {Warning(L"EnumClassObject", L"IWbemServices->ExecQuery", 0x80041001)}},
        // The scores are real32 values (VT_R4), a type the helper skips.
        WithoutResult{"UnsupportedType", L"Win32_WinSAT", L"CPUScore", kDefaultWmiNamespace, StatusInvalidArgument, {}},
        // Wine answers __DERIVATION with an empty string array.
        WithoutResult{
            "EmptyArray", kVideoController, L"__DERIVATION", kDefaultWmiNamespace, StatusInvalidArgument, {}}),
    [](const testing::TestParamInfo<WithoutResult>& info) { return std::string(info.param.name); });

// Each part of the query is measured with a bound of 1024 characters: a class part of exactly
// that length is taken whole. Here it carries a condition whose closing quote is its last
// character, so a part cut one short is a query WMI refuses.
TEST(PublicWmi, AClassPartOf1024CharactersIsTakenWhole)
{
    InstallGpu("Intel(R) Iris(R) Xe Graphics");
    const std::wstring condition = std::wstring(kVideoController) + L" WHERE Name <> '";
    const std::wstring className = condition + std::wstring(1024 - condition.size() - 1, L'x') + L"'";
    ASSERT_EQ(className.size(), 1024u);
    PublicWmi wmi;
    Document response = EmptyObject();
    EXPECT_EQ(wmi.GetPropertyValue(className.c_str(), L"Name", response), StatusSuccess);
    EXPECT_EQ(Compact(response), LR"({"result":["Intel(R) Iris(R) Xe Graphics"]})");
}

TEST(PublicWmi, ConnectAndEnumerateDirectly)
{
    InstallGpu("Radeon Pro");
    OnFreshThread([] {
        ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        {
            PublicWmi wmi;
            uint32_t status = 0x12345678;
            EXPECT_TRUE(wmi.ConnectToWmi(status));
            EXPECT_EQ(status, 0x12345678u);  // untouched on success

            const auto enumerator = wmi.EnumClassObject(kVideoController, status);
            ASSERT_TRUE(enumerator);
            EXPECT_EQ(status, 0x12345678u);
            Microsoft::WRL::ComPtr<IWbemClassObject> object;
            ULONG returned = 0;
            ASSERT_EQ(enumerator->Next(WBEM_INFINITE, 1, &object, &returned), WBEM_S_NO_ERROR);
            ASSERT_EQ(returned, 1u);
            VARIANT name;
            VariantInit(&name);
            ASSERT_EQ(object->Get(L"Name", 0, &name, nullptr, nullptr), WBEM_S_NO_ERROR);
            EXPECT_EQ(std::wstring(name.bstrVal), L"Radeon Pro");
            VariantClear(&name);

            PublicWmi elsewhere(L"ROOT\\NoSuchNamespace");
            status = StatusInvalidArgument;
            EXPECT_FALSE(elsewhere.ConnectToWmi(status));
            EXPECT_EQ(status, StatusWmiInvalidNamespace);
            status = StatusInvalidArgument;
            EXPECT_FALSE(elsewhere.EnumClassObject(kVideoController, status));
            EXPECT_EQ(status, StatusWmiInvalidNamespace);
        }
        CoUninitialize();
    });
}

TEST(PublicWmi, LeavesTheApartmentOnEveryExit)
{
    InstallGpu("Intel(R) Iris(R) Xe Graphics");
    OnFreshThread([] {
        Document response = EmptyObject();
        EXPECT_EQ(PublicWmi().GetPropertyValue(kVideoController, L"Name", response), StatusSuccess);
        EXPECT_TRUE(ThreadIsOutsideCom()) << "after success";
        EXPECT_EQ(PublicWmi().GetPropertyValue(kVideoController, L"NoSuchProperty", response), 0x2000000du);
        EXPECT_TRUE(ThreadIsOutsideCom()) << "after a failed Get";
        EXPECT_EQ(PublicWmi(L"ROOT\\NoSuchNamespace").GetPropertyValue(kVideoController, L"Name", response),
                  0x20000012u);
        EXPECT_TRUE(ThreadIsOutsideCom()) << "after a failed connection";
        EXPECT_EQ(PublicWmi().GetPropertyValue(L"Win32_SID", L"SID", response), StatusInvalidArgument);
        EXPECT_TRUE(ThreadIsOutsideCom()) << "after a failed query";
        EXPECT_EQ(PublicWmi().GetPropertyValue(L"Win32_CDROMDrive", L"Name", response), StatusInvalidArgument);
        EXPECT_TRUE(ThreadIsOutsideCom()) << "after an empty result";
    });
}

TEST(PublicWmi, JoinFailureIsLoggedTheQueryGoesOnAndTheThreadLosesOneInitialisation)
{
    InstallGpu("AMD Radeon RX 6600");
    OnFreshThread([] {
        ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        LogCapture capture;
        Document response = EmptyObject();
        EXPECT_EQ(PublicWmi().GetPropertyValue(kVideoController, L"Name", response), StatusSuccess);
        EXPECT_EQ(Compact(response), LR"({"result":["AMD Radeon RX 6600"]})");
        const auto warnings = Warnings(capture);
        ASSERT_EQ(warnings.size(), 1u);
        EXPECT_EQ(warnings[0].text, Warning(L"GetPropertyValue", L"CoInitializeEx", 0x80010106));
        // The helper's CoUninitialize took the thread's own initialisation away.
        EXPECT_TRUE(ThreadIsOutsideCom());
    });
}

// ---- Array-valued properties, on arrays made here.

TEST(PublicWmiSafeArray, TwoStringsBecomeOneNestedArrayOfTwoStrings)
{
    TestArray array(VT_BSTR, 2);
    BSTR first = SysAllocString(L"192.0.2.2");
    BSTR second = SysAllocString(L"fe80::1");
    array.Put(0, first);
    array.Put(1, second);
    SysFreeString(first);
    SysFreeString(second);

    LogCapture capture;
    Document response = EmptyObject();
    JsonArray into(rapidjson::kArrayType);
    into.PushBack(JsonArray(7), response.GetAllocator());
    EXPECT_TRUE(PublicWmi().GetSafeArrayData(array.value(), into, response));
    ASSERT_EQ(into.Size(), 2u);
    EXPECT_EQ(into[0].GetInt(), 7);
    ASSERT_TRUE(into[1].IsArray());
    ASSERT_EQ(into[1].Size(), 2u);
    EXPECT_EQ(std::wstring(into[1][0].GetString()), L"192.0.2.2");
    EXPECT_EQ(std::wstring(into[1][1].GetString()), L"fe80::1");
    EXPECT_THAT(capture.Texts(), testing::IsEmpty());
    EXPECT_EQ(array.Destroy(), S_OK);  // the data was unlocked again
}

TEST(PublicWmiSafeArray, IntegersAndBooleans)
{
    TestArray integers(VT_I4, 2);
    LONG three = 3;
    LONG minusSeven = -7;
    integers.Put(0, &three);
    integers.Put(1, &minusSeven);
    TestArray booleans(VT_BOOL, 3);
    VARIANT_BOOL values[] = {VARIANT_TRUE, VARIANT_FALSE, 1};
    for (LONG i = 0; i < 3; ++i) {
        booleans.Put(i, &values[i]);
    }

    Document response = EmptyObject();
    JsonArray into(rapidjson::kArrayType);
    PublicWmi wmi;
    EXPECT_TRUE(wmi.GetSafeArrayData(integers.value(), into, response));
    EXPECT_TRUE(wmi.GetSafeArrayData(booleans.value(), into, response));
    response.AddMember(L"result", into, response.GetAllocator());
    EXPECT_EQ(Compact(response), LR"({"result":[[3,-7],[true,false,true]]})");
}

TEST(PublicWmiSafeArray, EmptyArrayAppendsNothing)
{
    TestArray array(VT_BSTR, 0);
    LogCapture capture;
    Document response = EmptyObject();
    JsonArray into(rapidjson::kArrayType);
    EXPECT_FALSE(PublicWmi().GetSafeArrayData(array.value(), into, response));
    EXPECT_EQ(into.Size(), 0u);
    EXPECT_THAT(capture.Texts(), testing::IsEmpty());
    EXPECT_EQ(array.Destroy(), S_OK);
}

TEST(PublicWmiSafeArray, OtherElementTypesAreRefused)
{
    TestArray bytes(VT_UI1, 2);
    TestArray doubles(VT_R8, 1);
    VARIANT scalar;
    VariantInit(&scalar);
    scalar.vt = VT_I4;
    scalar.lVal = 5;
    LogCapture capture;
    Document response = EmptyObject();
    JsonArray into(rapidjson::kArrayType);
    PublicWmi wmi;
    EXPECT_FALSE(wmi.GetSafeArrayData(bytes.value(), into, response));
    EXPECT_FALSE(wmi.GetSafeArrayData(doubles.value(), into, response));
    EXPECT_FALSE(wmi.GetSafeArrayData(scalar, into, response));
    EXPECT_EQ(into.Size(), 0u);
    EXPECT_THAT(capture.Texts(), testing::IsEmpty());
}

TEST(PublicWmiSafeArray, DataThatCannotBeAccessedIsLoggedWithTheFixedLabel)
{
    VARIANT broken;
    VariantInit(&broken);
    broken.vt = VT_ARRAY | VT_I4;
    broken.parray = nullptr;
    LogCapture capture;
    Document response = EmptyObject();
    JsonArray into(rapidjson::kArrayType);
    EXPECT_FALSE(PublicWmi().GetSafeArrayData(broken, into, response));
    EXPECT_EQ(into.Size(), 0u);
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].level, Level::Warning);
    EXPECT_EQ(records[0].text,
              Warning(L"GetSafeArrayData", L"SafeArrayAccessData(VT_ARRAY | VT_UI1)", 0x80070057));  // E_INVALIDARG
}

TEST(PublicWmiSafeArray, FailedFetchEndsTheFetchingAndStillAppendsAndUnlocks)
{
    // The elements are fetched from index 0; an array that starts at 1 has no element 0.
    TestArray array(VT_I4, 2, 1);
    LONG value = 9;
    array.Put(1, &value);
    array.Put(2, &value);
    LogCapture capture;
    Document response = EmptyObject();
    JsonArray into(rapidjson::kArrayType);
    EXPECT_FALSE(PublicWmi().GetSafeArrayData(array.value(), into, response));
    ASSERT_EQ(into.Size(), 1u);
    ASSERT_TRUE(into[0].IsArray());
    EXPECT_EQ(into[0].Size(), 0u);
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].text, Warning(L"GetSafeArrayData", L"SafeArrayGetElement", 0x8002000b));  // DISP_E_BADINDEX
    EXPECT_EQ(array.Destroy(), S_OK);
}
