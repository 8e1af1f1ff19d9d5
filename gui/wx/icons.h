// The library's four message icons (30061 information, 30062 exclamation,
// 30063 question, 30064 stop).
#pragma once

#include <wx/bitmap.h>
#include <wx/icon.h>

namespace vnt::wx {

/// The icon as a bitmap of `size` pixels: the desktop theme's where it has
/// one, else drawn by the library. Invalid for other numbers.
wxBitmap messageIcon(long number, int size = 32);

/// An icon number as an icon: the four above, or an application's XRC
/// object "icon<N>" (class wxIcon or wxBitmap). wxNullIcon when there is
/// none.
wxIcon iconFor(long number);

}  // namespace vnt::wx
