// Windows, dialogs, controls, messages and the resources that they are made from.
#pragma once

#include "windef.h"

// Window styles.
#define WS_TABSTOP 0x00010000u
#define WS_SYSMENU 0x00080000u
#define WS_HSCROLL 0x00100000u
#define WS_VSCROLL 0x00200000u
#define WS_BORDER 0x00800000u
#define WS_CAPTION 0x00C00000u
#define WS_DISABLED 0x08000000u
#define WS_VISIBLE 0x10000000u
#define WS_CHILD 0x40000000u
#define WS_POPUP 0x80000000u

#define DS_SETFONT 0x40
#define DS_MODALFRAME 0x80

#define BS_PUSHBUTTON 0x00000000
#define BS_DEFPUSHBUTTON 0x00000001
#define BS_AUTOCHECKBOX 0x00000003

#define ES_MULTILINE 0x0004
#define ES_AUTOHSCROLL 0x0080
#define ES_READONLY 0x0800
#define ES_WANTRETURN 0x1000

#define SS_LEFT 0x00000000
#define SS_BITMAP 0x0000000E
#define SS_ICON 0x00000003

#define LBS_NOTIFY 0x0001
#define LBS_SORT 0x0002
#define LBS_USETABSTOPS 0x0080
#define LBS_NOINTEGRALHEIGHT 0x0100
#define LBS_MULTICOLUMN 0x0200

// Messages.
#define WM_NULL 0x0000
#define WM_DESTROY 0x0002
#define WM_ENABLE 0x000A
#define WM_SETTEXT 0x000C
#define WM_GETTEXT 0x000D
#define WM_GETTEXTLENGTH 0x000E
#define WM_CLOSE 0x0010
#define WM_QUIT 0x0012
#define WM_SHOWWINDOW 0x0018
#define WM_SETCURSOR 0x0020
#define WM_SETFONT 0x0030
#define WM_GETFONT 0x0031
#define WM_KEYDOWN 0x0100
#define WM_KEYUP 0x0101
#define WM_CHAR 0x0102
#define WM_INITDIALOG 0x0110
#define WM_COMMAND 0x0111
#define WM_SYSCOMMAND 0x0112
#define WM_HSCROLL 0x0114
#define WM_MOUSEMOVE 0x0200
#define WM_LBUTTONDOWN 0x0201
#define WM_LBUTTONUP 0x0202
#define WM_USER 0x0400

#define DM_GETDEFID (WM_USER + 0)
#define DM_SETDEFID (WM_USER + 1)
#define DC_HASDEFID 0x534B

#define SC_CLOSE 0xF060
#define HTCLIENT 1

#define BM_GETCHECK 0x00F0
#define BM_SETCHECK 0x00F1
#define BM_CLICK 0x00F5
#define BST_UNCHECKED 0x0000
#define BST_CHECKED 0x0001
#define BN_CLICKED 0

#define EM_SETSEL 0x00B1
#define EM_LIMITTEXT 0x00C5
#define EM_FMTLINES 0x00C8
#define EN_CHANGE 0x0300
#define EN_UPDATE 0x0400

#define LB_ADDSTRING 0x0180
#define LB_DELETESTRING 0x0182
#define LB_RESETCONTENT 0x0184
#define LB_SETCURSEL 0x0186
#define LB_GETCURSEL 0x0188
#define LB_GETTEXT 0x0189
#define LB_GETTEXTLEN 0x018A
#define LB_GETCOUNT 0x018B
#define LB_GETTOPINDEX 0x018E
#define LB_SETTABSTOPS 0x0192
#define LB_SETCOLUMNWIDTH 0x0195
#define LB_GETITEMRECT 0x0198
#define LB_ERR (-1)
#define LBN_SELCHANGE 1

#define SB_LINELEFT 0
#define SB_LINERIGHT 1
#define SB_PAGELEFT 2
#define SB_PAGERIGHT 3
#define SB_THUMBPOSITION 4
#define SB_LEFT 6
#define SB_RIGHT 7
#define SB_ENDSCROLL 8

#define VK_BACK 0x08
#define VK_TAB 0x09
#define VK_RETURN 0x0D
#define VK_ESCAPE 0x1B
#define VK_SPACE 0x20
#define VK_PRIOR 0x21
#define VK_NEXT 0x22
#define VK_END 0x23
#define VK_HOME 0x24
#define VK_LEFT 0x25
#define VK_UP 0x26
#define VK_RIGHT 0x27
#define VK_DOWN 0x28

#define IDOK 1
#define IDCANCEL 2

#define MB_OK 0x00000000u
#define MB_ICONEXCLAMATION 0x00000030u
#define MB_TOPMOST 0x00040000u

#define SW_HIDE 0
#define SW_SHOWNORMAL 1
#define SW_SHOWNOACTIVATE 4
#define SW_SHOW 5
#define SW_SHOWNA 8
#define SW_RESTORE 9

#define SWP_NOSIZE 0x0001
#define SWP_NOMOVE 0x0002
#define SWP_NOACTIVATE 0x0010

#define SM_CXSCREEN 0
#define SM_CYSCREEN 1

#define GWL_STYLE (-16)
#define GWL_EXSTYLE (-20)
#define GWLP_ID (-12)
#define GWLP_USERDATA (-21)
#define DWLP_MSGRESULT 0
#define DWLP_DLGPROC (static_cast<int>(DWLP_MSGRESULT + sizeof(LRESULT)))
#define DWLP_USER (static_cast<int>(DWLP_DLGPROC + sizeof(DLGPROC)))

#define PM_NOREMOVE 0x0000u
#define PM_REMOVE 0x0001u

#define RT_STRING MAKEINTRESOURCEW(6)

#define IDC_WAIT MAKEINTRESOURCEW(32514)

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};
using LPMSG = MSG*;

// Dialogs. Window calls fail with ERROR_INVALID_WINDOW_HANDLE for a window that doesn't exist.
HWND WINAPI CreateDialogParamW(HINSTANCE instance, LPCWSTR template_name, HWND parent, DLGPROC procedure,
                               LPARAM parameter);
INT_PTR WINAPI DialogBoxParamW(HINSTANCE instance, LPCWSTR template_name, HWND parent, DLGPROC procedure,
                               LPARAM parameter);
BOOL WINAPI EndDialog(HWND dialog, INT_PTR result);
BOOL WINAPI IsDialogMessageW(HWND dialog, LPMSG message);
HWND WINAPI GetDlgItem(HWND dialog, int id);
int WINAPI GetDlgCtrlID(HWND window);
BOOL WINAPI SetDlgItemTextW(HWND dialog, int id, LPCWSTR text);
UINT WINAPI GetDlgItemTextW(HWND dialog, int id, LPWSTR buffer, int capacity);
LRESULT WINAPI SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wparam, LPARAM lparam);

// Windows.
HWND WINAPI CreateWindowExW(DWORD extended_style, LPCWSTR class_name, LPCWSTR text, DWORD style, int x, int y,
                            int width, int height, HWND parent, HMENU id, HINSTANCE instance,
                            LPVOID parameter);
BOOL WINAPI DestroyWindow(HWND window);
BOOL WINAPI ShowWindow(HWND window, int command);
BOOL WINAPI EnableWindow(HWND window, BOOL enable);
BOOL WINAPI IsWindow(HWND window);
BOOL WINAPI IsWindowVisible(HWND window);
BOOL WINAPI IsWindowEnabled(HWND window);
HWND WINAPI GetParent(HWND window);
HWND WINAPI GetDesktopWindow();
BOOL WINAPI GetWindowRect(HWND window, LPRECT rectangle);
BOOL WINAPI MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);
BOOL WINAPI SetWindowPos(HWND window, HWND behind, int x, int y, int width, int height, UINT flags);
int WINAPI MapWindowPoints(HWND from, HWND to, LPPOINT points, UINT count);
BOOL WINAPI MapDialogRect(HWND dialog, LPRECT rectangle);
#define RDW_ALLCHILDREN 0x0080
#define RDW_UPDATENOW 0x0100
BOOL WINAPI RedrawWindow(HWND window, const RECT* part, HRGN region, UINT flags);
BOOL WINAPI SetForegroundWindow(HWND window);
BOOL WINAPI SetWindowTextW(HWND window, LPCWSTR text);
int WINAPI GetWindowTextW(HWND window, LPWSTR buffer, int capacity);
int WINAPI GetWindowTextLengthW(HWND window);
LONG_PTR WINAPI SetWindowLongPtrW(HWND window, int index, LONG_PTR value);
LONG_PTR WINAPI GetWindowLongPtrW(HWND window, int index);
int WINAPI GetSystemMetrics(int index);

// Messages.
LRESULT WINAPI SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
BOOL WINAPI PostMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
BOOL WINAPI GetMessageW(LPMSG message, HWND window, UINT first, UINT last);
BOOL WINAPI PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT remove);
BOOL WINAPI TranslateMessage(const MSG* message);
LRESULT WINAPI DispatchMessageW(const MSG* message);
void WINAPI PostQuitMessage(int exit_code);
int WINAPI MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT flags);

// Measuring text. The calls of a null context fail.
HDC WINAPI GetDC(HWND window);
int WINAPI ReleaseDC(HWND window, HDC context);
DWORD WINAPI GetTabbedTextExtentW(HDC context, LPCWSTR text, int length, int stop_count, const int* stops);

// Resources and cursors.
int WINAPI LoadStringW(HINSTANCE instance, UINT id, LPWSTR buffer, int capacity);
HCURSOR WINAPI LoadCursorW(HINSTANCE instance, LPCWSTR name);
HICON WINAPI LoadIconW(HINSTANCE instance, LPCWSTR name);
HCURSOR WINAPI SetCursor(HCURSOR cursor);
HCURSOR WINAPI GetCursor();
