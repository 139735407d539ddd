#pragma once

#include "machine/desktop/TerminalPaste.h"

#include <map>

class WaylandConnection;
struct org_kde_plasma_window;
struct org_kde_plasma_window_management;
struct zwlr_foreign_toplevel_handle_v1;
struct zwlr_foreign_toplevel_manager_v1;

/// The program whose window has the keyboard, as the compositor tells of the windows of all programs: KWin
/// where it permits (plasma-window-management), others by wlr-foreign-toplevel-management.
class ActiveWindow
{
public:
    explicit ActiveWindow(WaylandConnection &connection);
    ~ActiveWindow();
    ActiveWindow(const ActiveWindow &) = delete;
    ActiveWindow &operator=(const ActiveWindow &) = delete;

    /// Nothing in it where nobody has the keyboard, or nothing is told.
    FocusedProgram program() const;

private:
    struct Window
    {
        FocusedProgram program;
        bool isActive = false;
    };

    void listenTo(zwlr_foreign_toplevel_handle_v1 *window);
    void listenTo(org_kde_plasma_window *window);

    zwlr_foreign_toplevel_manager_v1 *m_toplevels;
    org_kde_plasma_window_management *m_plasma;
    std::map<zwlr_foreign_toplevel_handle_v1 *, Window> m_ofToplevels;
    std::map<org_kde_plasma_window *, Window> m_ofPlasma;
};
