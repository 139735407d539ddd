#include "machine/desktop/KeyPositions.h"

#include <algorithm>
#include <array>

#include <linux/input-event-codes.h>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace {

struct Position
{
    int keyCode;
    int evdevKey;
    xkb_keysym_t symbol;
};

// The virtual key codes of the ANSI layout, the kernel's keys in the same places, and what the ANSI layout
// types there. Two places differ in name: Help is where Insert is here, and Clear where Num Lock is. Code 10
// is the additional key of ISO keyboards.
constexpr std::array positions{std::to_array<Position>({
    // clang-format off
    {0, KEY_A, XKB_KEY_a}, {1, KEY_S, XKB_KEY_s}, {2, KEY_D, XKB_KEY_d}, {3, KEY_F, XKB_KEY_f},
    {4, KEY_H, XKB_KEY_h}, {5, KEY_G, XKB_KEY_g}, {6, KEY_Z, XKB_KEY_z}, {7, KEY_X, XKB_KEY_x},
    {8, KEY_C, XKB_KEY_c}, {9, KEY_V, XKB_KEY_v}, {10, KEY_102ND, XKB_KEY_section}, {11, KEY_B, XKB_KEY_b},
    {12, KEY_Q, XKB_KEY_q}, {13, KEY_W, XKB_KEY_w}, {14, KEY_E, XKB_KEY_e}, {15, KEY_R, XKB_KEY_r},
    {16, KEY_Y, XKB_KEY_y}, {17, KEY_T, XKB_KEY_t}, {18, KEY_1, XKB_KEY_1}, {19, KEY_2, XKB_KEY_2},
    {20, KEY_3, XKB_KEY_3}, {21, KEY_4, XKB_KEY_4}, {22, KEY_6, XKB_KEY_6}, {23, KEY_5, XKB_KEY_5},
    {24, KEY_EQUAL, XKB_KEY_equal}, {25, KEY_9, XKB_KEY_9}, {26, KEY_7, XKB_KEY_7},
    {27, KEY_MINUS, XKB_KEY_minus}, {28, KEY_8, XKB_KEY_8}, {29, KEY_0, XKB_KEY_0},
    {30, KEY_RIGHTBRACE, XKB_KEY_bracketright}, {31, KEY_O, XKB_KEY_o}, {32, KEY_U, XKB_KEY_u},
    {33, KEY_LEFTBRACE, XKB_KEY_bracketleft}, {34, KEY_I, XKB_KEY_i}, {35, KEY_P, XKB_KEY_p},
    {36, KEY_ENTER, XKB_KEY_Return}, {37, KEY_L, XKB_KEY_l}, {38, KEY_J, XKB_KEY_j},
    {39, KEY_APOSTROPHE, XKB_KEY_apostrophe}, {40, KEY_K, XKB_KEY_k},
    {41, KEY_SEMICOLON, XKB_KEY_semicolon}, {42, KEY_BACKSLASH, XKB_KEY_backslash},
    {43, KEY_COMMA, XKB_KEY_comma}, {44, KEY_SLASH, XKB_KEY_slash}, {45, KEY_N, XKB_KEY_n},
    {46, KEY_M, XKB_KEY_m}, {47, KEY_DOT, XKB_KEY_period}, {48, KEY_TAB, XKB_KEY_Tab},
    {49, KEY_SPACE, XKB_KEY_space}, {50, KEY_GRAVE, XKB_KEY_grave}, {51, KEY_BACKSPACE, XKB_KEY_BackSpace},
    {53, KEY_ESC, XKB_KEY_Escape}, {64, KEY_F17, XKB_KEY_F17}, {65, KEY_KPDOT, XKB_KEY_KP_Decimal},
    {67, KEY_KPASTERISK, XKB_KEY_KP_Multiply}, {69, KEY_KPPLUS, XKB_KEY_KP_Add},
    {71, KEY_NUMLOCK, XKB_KEY_Clear}, {75, KEY_KPSLASH, XKB_KEY_KP_Divide},
    {76, KEY_KPENTER, XKB_KEY_KP_Enter}, {78, KEY_KPMINUS, XKB_KEY_KP_Subtract}, {79, KEY_F18, XKB_KEY_F18},
    {80, KEY_F19, XKB_KEY_F19}, {81, KEY_KPEQUAL, XKB_KEY_KP_Equal}, {82, KEY_KP0, XKB_KEY_KP_0},
    {83, KEY_KP1, XKB_KEY_KP_1}, {84, KEY_KP2, XKB_KEY_KP_2}, {85, KEY_KP3, XKB_KEY_KP_3},
    {86, KEY_KP4, XKB_KEY_KP_4}, {87, KEY_KP5, XKB_KEY_KP_5}, {88, KEY_KP6, XKB_KEY_KP_6},
    {89, KEY_KP7, XKB_KEY_KP_7}, {90, KEY_F20, XKB_KEY_F20}, {91, KEY_KP8, XKB_KEY_KP_8},
    {92, KEY_KP9, XKB_KEY_KP_9}, {96, KEY_F5, XKB_KEY_F5}, {97, KEY_F6, XKB_KEY_F6},
    {98, KEY_F7, XKB_KEY_F7}, {99, KEY_F3, XKB_KEY_F3}, {100, KEY_F8, XKB_KEY_F8},
    {101, KEY_F9, XKB_KEY_F9}, {103, KEY_F11, XKB_KEY_F11}, {105, KEY_F13, XKB_KEY_F13},
    {106, KEY_F16, XKB_KEY_F16}, {107, KEY_F14, XKB_KEY_F14}, {109, KEY_F10, XKB_KEY_F10},
    {111, KEY_F12, XKB_KEY_F12}, {113, KEY_F15, XKB_KEY_F15}, {114, KEY_INSERT, XKB_KEY_Help},
    {115, KEY_HOME, XKB_KEY_Home}, {116, KEY_PAGEUP, XKB_KEY_Page_Up}, {117, KEY_DELETE, XKB_KEY_Delete},
    {118, KEY_F4, XKB_KEY_F4}, {119, KEY_END, XKB_KEY_End}, {120, KEY_F2, XKB_KEY_F2},
    {121, KEY_PAGEDOWN, XKB_KEY_Page_Down}, {122, KEY_F1, XKB_KEY_F1}, {123, KEY_LEFT, XKB_KEY_Left},
    {124, KEY_RIGHT, XKB_KEY_Right}, {125, KEY_DOWN, XKB_KEY_Down}, {126, KEY_UP, XKB_KEY_Up},
    // clang-format on
})};

// The X server numbers the keys of the kernel from 8.
constexpr int firstXKeycode = 8;

using CodeOfKey = std::array<qint16, 256>;

consteval CodeOfKey codesByKey()
{
    CodeOfKey codes;
    codes.fill(-1);
    for (const Position &position : positions)
        codes[static_cast<std::size_t>(position.evdevKey + firstXKeycode)] =
            static_cast<qint16>(position.keyCode);
    return codes;
}

constexpr CodeOfKey codeOfKey = codesByKey();

const Position *find(qint64 keyCode)
{
    const auto it = std::ranges::find(positions, keyCode, &Position::keyCode);
    return it == positions.end() ? nullptr : &*it;
}

} // namespace

uint8_t KeyPositions::xKeycode(qint64 keyCode)
{
    const Position *position = find(keyCode);
    return position ? static_cast<uint8_t>(position->evdevKey + firstXKeycode) : uint8_t(0);
}

qint64 KeyPositions::keyCode(uint8_t xKeycode)
{
    return codeOfKey[xKeycode];
}

xkb_keysym_t KeyPositions::symbol(qint64 keyCode)
{
    const Position *position = find(keyCode);
    return position ? position->symbol : xkb_keysym_t(XKB_KEY_NoSymbol);
}
