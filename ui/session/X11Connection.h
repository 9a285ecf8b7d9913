#pragma once

struct xcb_connection_t;

namespace tovi {

/// The program's connection to the X server; none on other platforms.
xcb_connection_t* x11Connection();

} // namespace tovi
