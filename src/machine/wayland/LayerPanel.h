#pragma once

#include "base/FloatingPanel.h"
#include "machine/desktop/PanelPicture.h"
#include "machine/desktop/SpokenPanel.h"

#include <QObject>
#include <QSize>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

class Appearance;
class PanelContent;
class WaylandConnection;
struct wl_callback;
struct wl_compositor;
struct wl_output;
struct wl_shm;
struct wl_surface;
struct wp_fractional_scale_manager_v1;
struct wp_fractional_scale_v1;
struct wp_viewport;
struct wp_viewporter;
struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;

/// A floating panel on a Wayland desktop that lets programs put surfaces above its windows (layer-shell).
///
/// The compositor chooses the screen, the one that is worked on, and asks for each picture; nothing is
/// painted while it asks for none. The keyboard and the pointer never reach the surface.
class LayerPanel final : public QObject, public FloatingPanel
{
    Q_OBJECT
public:
    LayerPanel(PanelContent &content, WaylandConnection &connection, const Appearance &appearance);
    ~LayerPanel() override;
    Q_DISABLE_COPY_MOVE(LayerPanel)

    /// Whether the compositor has what it takes.
    static bool isOffered(const WaylandConnection &connection);

    std::optional<QRect> visibleFrame() const override;
    bool reducesMotion() const override;
    void show(const QRect &frame, double cornerRadius) override;
    void hide() override;
    void update(const QRect &part) override;
    void announce(const QString &text) override;

private:
    class Buffer;
    struct Output
    {
        wl_output *output = nullptr;
        QSize pixels;
        int scale = 1;
    };

    void makeSurface();
    void configure(uint32_t serial);
    void setScale(double scale);
    void paint(const QRect &part);
    void commit();
    Buffer *freeBuffer();

    PanelContent &m_content;
    WaylandConnection &m_connection;
    const Appearance &m_appearance;
    wl_compositor *m_compositor;
    wl_shm *m_shm;
    zwlr_layer_shell_v1 *m_shell;
    wp_viewporter *m_viewporter;
    wp_fractional_scale_manager_v1 *m_scales;
    std::vector<std::unique_ptr<Output>> m_outputs;

    wl_surface *m_surface = nullptr; // while it is shown
    zwlr_layer_surface_v1 *m_layer = nullptr;
    wp_viewport *m_viewport = nullptr;
    wp_fractional_scale_v1 *m_preferred = nullptr;
    wl_callback *m_frame = nullptr; // the compositor has not asked for the next picture
    bool m_isConfigured = false;
    bool m_isChanged = false; // the picture is newer than what the compositor has

    PanelPicture m_picture;
    SpokenPanel m_spoken;
    std::array<std::unique_ptr<Buffer>, 3> m_buffers;
};
