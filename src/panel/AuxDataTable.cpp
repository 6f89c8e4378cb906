#include "panel/AuxDataTable.h"

namespace Xelto::Spanlet::Server::Services::Lumaven {

AuxDataMap BuildAuxDataMap()
{
    AuxDataMap map;
    // Panel 4160 sends all four writes in both states; only the third byte at 0x4056
    // differs. The three-byte writes are single transactions.
    map[{kSdc4160, true}] = {
        {0x404B, {0x7C, 0x84, 0xCC}}, {0x4056, {0x17, 0x56, 0xFE}}, {0x404E, {0x0C, 0x00, 0x03}}, {0x4054, {0x02}}};
    map[{kSdc4160, false}] = {
        {0x404B, {0x7C, 0x84, 0xCC}}, {0x4056, {0x17, 0x56, 0xF0}}, {0x404E, {0x0C, 0x00, 0x03}}, {0x4054, {0x02}}};
    map[{kSdc4174, true}] = {{0x4027, {0xC0}}};
    map[{kSdc4174, false}] = {{0x4027, {0x00}}};
    map[{kSdc4166, true}] = {{0x401D, {0xC0}}};
    map[{kSdc4166, false}] = {{0x401D, {0x00}}};
    map[{kSdc4170, true}] = {{0x401D, {0xC0}}};
    map[{kSdc4170, false}] = {{0x401D, {0x00}}};
    // Panel 416C lives in the 0x0453..0x045C range and wants its bytes in exactly
    // this non-ascending order; the states differ only at 0x045A.
    map[{kSdc416C, true}] = {{0x045C, {0x06}}, {0x0454, {0x18}}, {0x0453, {0x41}}, {0x045A, {0xC0}}, {0x045B, {0x40}}};
    map[{kSdc416C, false}] = {{0x045C, {0x06}}, {0x0454, {0x18}}, {0x0453, {0x41}}, {0x045A, {0x00}}, {0x045B, {0x40}}};
    for (const PanelId panel : {kSdc417C, kSdc4197, kSdc417D, kSdc41A6, kSdc41AC, kSdc41AA}) {
        map[{panel, true}] = {{0x402E, {0xC0}}};
        map[{panel, false}] = {{0x402E, {0x00}}};
    }
    return map;
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
