// SPDX-License-Identifier: MIT
// The numbers of the window framework: messages, keys, styles, notification codes and flags. They are those
// that the controls and the command modules were written with.
#pragma once

#include "framework/windows/types.h"

// Messages. Numbers from 0xC000 on are handed out by RegisterWindowMessage.
constexpr UINT WM_CREATE = 0x1;
constexpr UINT WM_DESTROY = 0x2;
constexpr UINT WM_SETFOCUS = 0x7;  ///< the first parameter is the window that lost the focus
constexpr UINT WM_KILLFOCUS = 0x8; ///< the first parameter is the window that takes the focus
constexpr UINT WM_PAINT = 0xF;
constexpr UINT WM_SETCURSOR = 0x20;
constexpr UINT WM_DRAWITEM = 0x2B;
constexpr UINT WM_MEASUREITEM = 0x2C;
constexpr UINT WM_DELETEITEM = 0x2D;
constexpr UINT WM_SETFONT = 0x30;
constexpr UINT WM_NOTIFY = 0x4E; ///< the second parameter is an NMHDR*
constexpr UINT WM_NCDESTROY = 0x82;
constexpr UINT WM_KEYDOWN = 0x100; ///< the first parameter is the key
constexpr UINT WM_CHAR = 0x102;    ///< the first parameter is the unit
constexpr UINT WM_INITDIALOG = 0x110;
constexpr UINT WM_COMMAND = 0x111; ///< control id and code in the first parameter, its window in the second
constexpr UINT WM_HSCROLL = 0x114;
constexpr UINT WM_VSCROLL = 0x115;
constexpr UINT WM_CTLCOLOREDIT = 0x133;
constexpr UINT WM_MOUSEMOVE = 0x200;
constexpr UINT WM_LBUTTONDOWN = 0x201;
constexpr UINT WM_LBUTTONUP = 0x202;
constexpr UINT WM_LBUTTONDBLCLK = 0x203;
constexpr UINT WM_MOUSEWHEEL = 0x20A;
constexpr UINT WM_SIZING = 0x214;
constexpr UINT WM_MOUSELEAVE = 0x2A3;
constexpr UINT WM_DPICHANGED = 0x2E0;

// Keys.
constexpr UINT VK_BACK = 8;
constexpr UINT VK_TAB = 9;
constexpr UINT VK_RETURN = 13;
constexpr UINT VK_SHIFT = 16;
constexpr UINT VK_CONTROL = 17;
constexpr UINT VK_ESCAPE = 27;
constexpr UINT VK_LEFT = 37;
constexpr UINT VK_UP = 38;
constexpr UINT VK_RIGHT = 39;
constexpr UINT VK_DOWN = 40;
constexpr UINT VK_DELETE = 46;

// Styles of windows.
constexpr DWORD WS_CHILD = 0x40000000;
constexpr DWORD WS_VISIBLE = 0x10000000;
constexpr DWORD WS_DISABLED = 0x08000000;
constexpr DWORD WS_BORDER = 0x00800000;
constexpr DWORD WS_VSCROLL = 0x00200000;
constexpr DWORD WS_TABSTOP = 0x00010000;
constexpr DWORD ES_AUTOHSCROLL = 0x80;
constexpr DWORD SS_NOTIFY = 0x100;
constexpr DWORD BS_OWNERDRAW = 0xB;
constexpr DWORD CBS_SIMPLE = 1;
constexpr DWORD CBS_DROPDOWN = 2;
constexpr DWORD CBS_DROPDOWNLIST = 3;
constexpr DWORD CBS_OWNERDRAWFIXED = 0x10;
constexpr DWORD CBS_AUTOHSCROLL = 0x40;
constexpr DWORD CBS_HASSTRINGS = 0x200;
constexpr DWORD LVS_REPORT = 1;
constexpr DWORD LVS_SINGLESEL = 4;
constexpr DWORD LVS_SHOWSELALWAYS = 8;
constexpr DWORD LVS_EX_FULLROWSELECT = 0x20;
constexpr DWORD LVS_EX_INFOTIP = 0x400;
constexpr DWORD LVS_EX_DOUBLEBUFFER = 0x10000;

// What a control tells its parent.
constexpr UINT BN_CLICKED = 0;
constexpr UINT CBN_SELCHANGE = 1;
constexpr UINT CBN_SETFOCUS = 3;
constexpr UINT CBN_KILLFOCUS = 4;
constexpr UINT CBN_EDITCHANGE = 5;
constexpr UINT CBN_DROPDOWN = 7;
constexpr UINT CBN_CLOSEUP = 8;
constexpr UINT EN_SETFOCUS = 0x100;
constexpr UINT EN_KILLFOCUS = 0x200;
constexpr UINT EN_CHANGE = 0x300;
constexpr int NM_CUSTOMDRAW = -12;
constexpr int LVN_ITEMCHANGED = -101;
constexpr int LVN_HOTTRACK = -121;
constexpr int LVN_BEGINLABELEDIT = -175;

// Siblings of a window, for CWnd::GetWindow.
constexpr UINT GW_HWNDFIRST = 0;
constexpr UINT GW_HWNDLAST = 1;
constexpr UINT GW_HWNDNEXT = 2;
constexpr UINT GW_HWNDPREV = 3;

// Flags of CWnd::SetWindowPos.
constexpr UINT SWP_NOSIZE = 1;
constexpr UINT SWP_NOMOVE = 2;
constexpr UINT SWP_NOZORDER = 4;
constexpr UINT SWP_NOACTIVATE = 0x10;

// Buttons of dialogs.
constexpr int IDOK = 1;
constexpr int IDCANCEL = 2;

/// The head of a WM_NOTIFY.
struct NMHDR {
    HWND hwndFrom = nullptr;
    std::uintptr_t idFrom = 0;
    int code = 0;
};

/// A message on its way to a window.
struct MSG {
    HWND hwnd = nullptr;
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};

/// The number of the message of that name, the same for all who ask; names are compared without case. Numbers
/// start at 0xC000. From any thread.
LM_WINDOWS_API UINT RegisterWindowMessage(const unsigned short* name);
LM_WINDOWS_API UINT RegisterWindowMessage(const char* name);
