// The panel AUX sequences.
#include "panel/AuxDataTable.h"

#include <gtest/gtest.h>

using namespace Xelto::Spanlet::Server::Services::Lumaven;

namespace {

using Writes = std::vector<AuxWrite>;

const AuxDataMap& Table()
{
    static const AuxDataMap table = BuildAuxDataMap();
    return table;
}

}  // namespace

TEST(AuxDataTable, EveryPanelHasBothKeysAndNothingElse)
{
    EXPECT_EQ(Table().size(), 2 * kPanelIdByIndex.size());
    for (const auto& [index, id] : kPanelIdByIndex) {
        EXPECT_EQ(Table().count({id, true}), 1u) << std::hex << id;
        EXPECT_EQ(Table().count({id, false}), 1u) << std::hex << id;
    }
}

TEST(AuxDataTable, UnknownIdentitiesAreNotFound)
{
    EXPECT_EQ(Table().count({0, true}), 0u);
    EXPECT_EQ(Table().count({0, false}), 0u);
    EXPECT_EQ(Table().count({0x4199834C, true}), 0u);
}

TEST(AuxDataTable, Panel4160WritesFourRegistersDifferingInOneByte)
{
    EXPECT_EQ(Table().at({0x4160834C, true}), (Writes{{0x404B, {0x7C, 0x84, 0xCC}},
                                                      {0x4056, {0x17, 0x56, 0xFE}},
                                                      {0x404E, {0x0C, 0x00, 0x03}},
                                                      {0x4054, {0x02}}}));
    EXPECT_EQ(Table().at({0x4160834C, false}), (Writes{{0x404B, {0x7C, 0x84, 0xCC}},
                                                       {0x4056, {0x17, 0x56, 0xF0}},
                                                       {0x404E, {0x0C, 0x00, 0x03}},
                                                       {0x4054, {0x02}}}));
}

TEST(AuxDataTable, Panel416CWritesFiveSingleBytesInItsOwnOrder)
{
    EXPECT_EQ(Table().at({0x416C834C, false}),
              (Writes{{0x045C, {0x06}}, {0x0454, {0x18}}, {0x0453, {0x41}}, {0x045A, {0x00}}, {0x045B, {0x40}}}));
    EXPECT_EQ(Table().at({0x416C834C, true}),
              (Writes{{0x045C, {0x06}}, {0x0454, {0x18}}, {0x0453, {0x41}}, {0x045A, {0xC0}}, {0x045B, {0x40}}}));
}

TEST(AuxDataTable, SingleRegisterPanels)
{
    const std::vector<std::pair<PanelId, uint32_t>> single = {
        {0x4174834C, 0x4027}, {0x4166834C, 0x401D}, {0x4170834C, 0x401D}, {0x417C834C, 0x402E}, {0x4197834C, 0x402E},
        {0x417D834C, 0x402E}, {0x41A6834C, 0x402E}, {0x41AC834C, 0x402E}, {0x41AA834C, 0x402E}};
    for (const auto& [panel, address] : single) {
        EXPECT_EQ(Table().at({panel, true}), (Writes{{address, {0xC0}}})) << std::hex << panel;
        EXPECT_EQ(Table().at({panel, false}), (Writes{{address, {0x00}}})) << std::hex << panel;
    }
}

TEST(AuxDataTable, KeysOrderByPanelThenOffBeforeOn)
{
    EXPECT_TRUE((AuxDataKey{0x4160834C, false} < AuxDataKey{0x4160834C, true}));
    EXPECT_TRUE((AuxDataKey{0x4160834C, true} < AuxDataKey{0x4166834C, false}));
    EXPECT_EQ(Table().begin()->first.panelId, 0x4160834Cu);
    EXPECT_FALSE(Table().begin()->first.on);
}

TEST(AuxDataTable, WritesAreEqualOnlyInAddressAndBytes)
{
    const AuxWrite write{0x4027, {0xC0}};
    EXPECT_TRUE(write == (AuxWrite{0x4027, {0xC0}}));
    EXPECT_FALSE(write == (AuxWrite{0x4028, {0xC0}}));
    EXPECT_FALSE(write == (AuxWrite{0x4027, {0xC1}}));
    EXPECT_FALSE(write == (AuxWrite{0x4027, {0xC0, 0x00}}));
}

TEST(AuxDataTable, KeysOrderByPanelAndThenOffBeforeOn)
{
    EXPECT_TRUE((AuxDataKey{1, false} < AuxDataKey{1, true}));
    EXPECT_FALSE((AuxDataKey{1, true} < AuxDataKey{1, false}));
    EXPECT_FALSE((AuxDataKey{1, true} < AuxDataKey{1, true}));
    EXPECT_TRUE((AuxDataKey{1, true} < AuxDataKey{2, false}));
    EXPECT_FALSE((AuxDataKey{2, false} < AuxDataKey{1, true}));
}
