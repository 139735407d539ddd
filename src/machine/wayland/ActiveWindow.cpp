#include "machine/wayland/ActiveWindow.h"

#include "machine/wayland/WaylandConnection.h"

#include <algorithm>
#include <span>

#include <plasma-window-management.h>
#include <wayland-client.h>
#include <wlr-foreign-toplevel-management-unstable-v1.h>

ActiveWindow::ActiveWindow(WaylandConnection &connection)
    : m_toplevels(
          connection.bind<zwlr_foreign_toplevel_manager_v1>(zwlr_foreign_toplevel_manager_v1_interface, 1)),
      m_plasma(
          connection.bind<org_kde_plasma_window_management>(org_kde_plasma_window_management_interface, 16))
{
    if (m_toplevels) {
        using Manager = zwlr_foreign_toplevel_manager_v1;
        static constexpr zwlr_foreign_toplevel_manager_v1_listener listener{
            .toplevel =
                [](void *self, Manager *, zwlr_foreign_toplevel_handle_v1 *window) {
                    static_cast<ActiveWindow *>(self)->listenTo(window);
                },
            .finished = [](void *, Manager *) {}};
        zwlr_foreign_toplevel_manager_v1_add_listener(m_toplevels, &listener, this);
    }
    if (m_plasma) {
        using Manager = org_kde_plasma_window_management;
        static constexpr org_kde_plasma_window_management_listener listener{
            .show_desktop_changed = [](void *, Manager *, uint32_t) {},
            .window = [](void *, Manager *, uint32_t) {},
            .stacking_order_changed = [](void *, Manager *, wl_array *) {},
            .stacking_order_uuid_changed = [](void *, Manager *, const char *) {},
            .window_with_uuid =
                [](void *self, Manager *manager, uint32_t, const char *uuid) {
                    static_cast<ActiveWindow *>(self)->listenTo(
                        org_kde_plasma_window_management_get_window_by_uuid(manager, uuid));
                }};
        org_kde_plasma_window_management_add_listener(m_plasma, &listener, this);
    }
    connection.flush();
}

ActiveWindow::~ActiveWindow()
{
    for (const auto &[window, told] : m_ofToplevels)
        zwlr_foreign_toplevel_handle_v1_destroy(window);
    for (const auto &[window, told] : m_ofPlasma)
        org_kde_plasma_window_destroy(window);
    if (m_toplevels)
        zwlr_foreign_toplevel_manager_v1_destroy(m_toplevels);
    if (m_plasma)
        org_kde_plasma_window_management_destroy(m_plasma);
}

FocusedProgram ActiveWindow::program() const
{
    const auto activeIn = [](const auto &windows) {
        const auto it = std::ranges::find_if(windows, [](const auto &each) { return each.second.isActive; });
        return it == windows.end() ? FocusedProgram() : it->second.program;
    };
    FocusedProgram program = m_plasma ? activeIn(m_ofPlasma) : activeIn(m_ofToplevels);
    program.command = FocusedProgram::commandOf(program.pid);
    return program;
}

void ActiveWindow::listenTo(zwlr_foreign_toplevel_handle_v1 *window)
{
    using Handle = zwlr_foreign_toplevel_handle_v1;
    static constexpr auto told = [](void *self, Handle *handle) -> Window & {
        return static_cast<ActiveWindow *>(self)->m_ofToplevels[handle];
    };
    static constexpr zwlr_foreign_toplevel_handle_v1_listener listener{
        .title = [](void *, Handle *, const char *) {},
        .app_id = [](void *self, Handle *handle,
                     const char *id) { told(self, handle).program.className = QByteArray(id); },
        .output_enter = [](void *, Handle *, wl_output *) {},
        .output_leave = [](void *, Handle *, wl_output *) {},
        .state =
            [](void *self, Handle *handle, wl_array *states) {
                const std::span all(static_cast<const uint32_t *>(states->data),
                                    states->size / sizeof(uint32_t));
                told(self, handle).isActive =
                    std::ranges::find(all, ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED) != all.end();
            },
        .done = [](void *, Handle *) {},
        .closed =
            [](void *self, Handle *handle) {
                static_cast<ActiveWindow *>(self)->m_ofToplevels.erase(handle);
                zwlr_foreign_toplevel_handle_v1_destroy(handle);
            }};
    m_ofToplevels.emplace(window, Window());
    zwlr_foreign_toplevel_handle_v1_add_listener(window, &listener, this);
}

void ActiveWindow::listenTo(org_kde_plasma_window *window)
{
    using Handle = org_kde_plasma_window;
    static constexpr auto told = [](void *self, Handle *handle) -> Window & {
        return static_cast<ActiveWindow *>(self)->m_ofPlasma[handle];
    };
    static constexpr org_kde_plasma_window_listener listener{
        .title_changed = [](void *, Handle *, const char *) {},
        .app_id_changed = [](void *self, Handle *handle,
                             const char *id) { told(self, handle).program.className = QByteArray(id); },
        .state_changed =
            [](void *self, Handle *handle, uint32_t flags) {
                told(self, handle).isActive = flags & ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_ACTIVE;
            },
        .virtual_desktop_changed = [](void *, Handle *, int32_t) {},
        .themed_icon_name_changed = [](void *, Handle *, const char *) {},
        .unmapped =
            [](void *self, Handle *handle) {
                static_cast<ActiveWindow *>(self)->m_ofPlasma.erase(handle);
                org_kde_plasma_window_destroy(handle);
            },
        .initial_state = [](void *, Handle *) {},
        .parent_window = [](void *, Handle *, Handle *) {},
        .geometry = [](void *, Handle *, int32_t, int32_t, uint32_t, uint32_t) {},
        .icon_changed = [](void *, Handle *) {},
        .pid_changed = [](void *self, Handle *handle, uint32_t pid) { told(self, handle).program.pid = pid; },
        .virtual_desktop_entered = [](void *, Handle *, const char *) {},
        .virtual_desktop_left = [](void *, Handle *, const char *) {},
        .application_menu = [](void *, Handle *, const char *, const char *) {},
        .activity_entered = [](void *, Handle *, const char *) {},
        .activity_left = [](void *, Handle *, const char *) {},
        .resource_name_changed = [](void *, Handle *, const char *) {}};
    m_ofPlasma.emplace(window, Window());
    org_kde_plasma_window_add_listener(window, &listener, this);
}
