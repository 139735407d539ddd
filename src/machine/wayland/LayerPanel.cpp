#include "machine/wayland/LayerPanel.h"

#include "base/Appearance.h"
#include "base/FloatingPanel.h"
#include "machine/wayland/WaylandConnection.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

#include <fractional-scale-v1.h>
#include <sys/mman.h>
#include <unistd.h>
#include <viewporter.h>
#include <wayland-client.h>
#include <wlr-layer-shell-unstable-v1.h>

namespace {

constexpr int reach = PanelShadow::reach;
constexpr double fractions = 120; // what the compositor counts fractional scales in

template <typename Object>
void destroy(Object *&object, void (*end)(Object *))
{
    if (object)
        end(std::exchange(object, nullptr));
}

} // namespace

/// A picture in memory that the compositor reads.
class LayerPanel::Buffer
{
public:
    Buffer(wl_shm *shm, const QSize &size)
        : m_size(size),
          m_bytes(size_t(size.width()) * size_t(size.height()) * 4)
    {
        const int file = memfd_create("sayvane-overlay", MFD_CLOEXEC);
        if (file < 0)
            return;
        if (ftruncate(file, static_cast<off_t>(m_bytes)) == 0) {
            void *memory = mmap(nullptr, m_bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
            if (memory != MAP_FAILED) {
                m_memory = memory;
                wl_shm_pool *pool = wl_shm_create_pool(shm, file, static_cast<int32_t>(m_bytes));
                m_buffer = wl_shm_pool_create_buffer(pool, 0, size.width(), size.height(), size.width() * 4,
                                                     WL_SHM_FORMAT_ARGB8888);
                wl_shm_pool_destroy(pool);
                static constexpr wl_buffer_listener listener{.release = [](void *self, wl_buffer *) {
                    static_cast<Buffer *>(self)->m_isBusy = false;
                }};
                wl_buffer_add_listener(m_buffer, &listener, this);
            }
        }
        close(file);
    }
    ~Buffer()
    {
        if (m_buffer)
            wl_buffer_destroy(m_buffer);
        if (m_memory)
            munmap(m_memory, m_bytes);
    }
    Q_DISABLE_COPY_MOVE(Buffer)

    bool isFree() const { return m_buffer && !m_isBusy; }
    bool fits(const QSize &size) const { return m_size == size; }
    void give(wl_surface *surface, const QImage &picture)
    {
        std::memcpy(m_memory, picture.constBits(), m_bytes);
        wl_surface_attach(surface, m_buffer, 0, 0);
        wl_surface_damage_buffer(surface, 0, 0, m_size.width(), m_size.height());
        m_isBusy = true;
    }

private:
    QSize m_size;
    size_t m_bytes;
    void *m_memory = nullptr;
    wl_buffer *m_buffer = nullptr;
    bool m_isBusy = false;
};

bool LayerPanel::isOffered(const WaylandConnection &connection)
{
    return connection.offers(zwlr_layer_shell_v1_interface) && connection.offers(wl_shm_interface);
}

LayerPanel::LayerPanel(PanelContent &content, WaylandConnection &connection, const Appearance &appearance)
    : m_content(content),
      m_connection(connection),
      m_appearance(appearance),
      m_compositor(connection.bind<wl_compositor>(wl_compositor_interface, 4)),
      m_shm(connection.bind<wl_shm>(wl_shm_interface, 1)),
      m_shell(connection.bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, 4)),
      m_viewporter(connection.bind<wp_viewporter>(wp_viewporter_interface, 1)),
      m_scales(connection.bind<wp_fractional_scale_manager_v1>(wp_fractional_scale_manager_v1_interface, 1))
{
    static constexpr wl_output_listener listener{
        .geometry = [](void *, wl_output *, int32_t, int32_t, int32_t, int32_t, int32_t, const char *,
                       const char *, int32_t) {},
        .mode =
            [](void *self, wl_output *, uint32_t flags, int32_t width, int32_t height, int32_t) {
                if (flags & WL_OUTPUT_MODE_CURRENT)
                    static_cast<Output *>(self)->pixels = {width, height};
            },
        .done = [](void *, wl_output *) {},
        .scale = [](void *self, wl_output *, int32_t scale) { static_cast<Output *>(self)->scale = scale; },
        .name = {},
        .description = {}};
    for (wl_output *output : connection.bindEach<wl_output>(wl_output_interface, 2)) {
        m_outputs.push_back(std::make_unique<Output>(Output{.output = output, .pixels = {}, .scale = 1}));
        wl_output_add_listener(output, &listener, m_outputs.back().get());
    }
    m_connection.roundtrip();
    int scale = 1;
    for (const auto &output : m_outputs)
        scale = std::max(scale, output->scale);
    m_picture.setScale(scale);
    connect(&connection, &WaylandConnection::lost, this, &LayerPanel::hide);
}

LayerPanel::~LayerPanel()
{
    hide();
    for (const auto &output : m_outputs)
        wl_output_destroy(output->output);
    destroy(m_scales, wp_fractional_scale_manager_v1_destroy);
    destroy(m_viewporter, wp_viewporter_destroy);
    zwlr_layer_shell_v1_destroy(m_shell);
    wl_shm_destroy(m_shm);
    wl_compositor_destroy(m_compositor);
    m_connection.flush();
}

/// Which screen it will be is not known before: what fits the smallest of them fits it too.
std::optional<QRect> LayerPanel::visibleFrame() const
{
    std::optional<QSize> smallest;
    for (const auto &output : m_outputs) {
        const QSize size = output->pixels / output->scale;
        if (!size.isEmpty())
            smallest = smallest ? smallest->boundedTo(size) : size;
    }
    return smallest ? std::optional(QRect(QPoint(0, 0), *smallest)) : std::nullopt;
}

bool LayerPanel::reducesMotion() const
{
    return m_appearance.wishes().reducedMotion;
}

void LayerPanel::show(const QRect &frame, double cornerRadius)
{
    const bool isLarger = frame.size() != m_picture.panel();
    m_picture.resize(frame.size(), cornerRadius);
    const int margin = visibleFrame().value_or(frame).bottom() - frame.bottom();
    if (!m_surface)
        makeSurface();
    else if (!isLarger)
        return paint(QRect(QPoint(0, 0), m_picture.panel()));
    m_isConfigured = false; // it is painted when the compositor has agreed to the size
    zwlr_layer_surface_v1_set_size(m_layer, uint32_t(m_picture.size().width()),
                                   uint32_t(m_picture.size().height()));
    zwlr_layer_surface_v1_set_margin(m_layer, 0, 0, margin - reach, 0);
    wl_surface_commit(m_surface);
    m_connection.flush();
}

void LayerPanel::makeSurface()
{
    m_surface = wl_compositor_create_surface(m_compositor);
    static constexpr wl_surface_listener surfaceListener{
        .enter =
            [](void *data, wl_surface *, wl_output *entered) {
                auto &self = *static_cast<LayerPanel *>(data);
                const auto it =
                    std::ranges::find(self.m_outputs, entered, [](const auto &each) { return each->output; });
                if (it != self.m_outputs.end() && !self.m_preferred)
                    self.setScale((*it)->scale);
            },
        .leave = [](void *, wl_surface *, wl_output *) {}};
    wl_surface_add_listener(m_surface, &surfaceListener, this);
    wl_region *nothing = wl_compositor_create_region(m_compositor);
    wl_surface_set_input_region(m_surface, nothing);
    wl_region_destroy(nothing);
    if (m_viewporter && m_scales) {
        m_viewport = wp_viewporter_get_viewport(m_viewporter, m_surface);
        m_preferred = wp_fractional_scale_manager_v1_get_fractional_scale(m_scales, m_surface);
        static constexpr wp_fractional_scale_v1_listener scaleListener{
            .preferred_scale = [](void *self, wp_fractional_scale_v1 *, uint32_t scale) {
                static_cast<LayerPanel *>(self)->setScale(scale / fractions);
            }};
        wp_fractional_scale_v1_add_listener(m_preferred, &scaleListener, this);
    }
    m_layer = zwlr_layer_shell_v1_get_layer_surface(m_shell, m_surface, nullptr,
                                                    ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "sayvane");
    static constexpr zwlr_layer_surface_v1_listener layerListener{
        .configure = [](void *self, zwlr_layer_surface_v1 *, uint32_t serial, uint32_t,
                        uint32_t) { static_cast<LayerPanel *>(self)->configure(serial); },
        .closed = [](void *self, zwlr_layer_surface_v1 *) { static_cast<LayerPanel *>(self)->hide(); }};
    zwlr_layer_surface_v1_add_listener(m_layer, &layerListener, this);
    zwlr_layer_surface_v1_set_anchor(m_layer, ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM);
    zwlr_layer_surface_v1_set_exclusive_zone(m_layer, 0);
    zwlr_layer_surface_v1_set_keyboard_interactivity(m_layer, 0);
}

void LayerPanel::configure(uint32_t serial)
{
    zwlr_layer_surface_v1_ack_configure(m_layer, serial);
    m_isConfigured = true;
    destroy(m_frame, wl_callback_destroy);
    paint(QRect(QPoint(0, 0), m_picture.panel()));
}

void LayerPanel::setScale(double scale)
{
    if (m_picture.scale() == scale)
        return;
    m_picture.setScale(scale);
    if (m_isConfigured)
        paint(QRect(QPoint(0, 0), m_picture.panel()));
}

void LayerPanel::hide()
{
    destroy(m_frame, wl_callback_destroy);
    destroy(m_preferred, wp_fractional_scale_v1_destroy);
    destroy(m_viewport, wp_viewport_destroy);
    destroy(m_layer, zwlr_layer_surface_v1_destroy);
    destroy(m_surface, wl_surface_destroy);
    m_buffers = {};
    m_isConfigured = false;
    m_isChanged = false;
    m_connection.flush();
}

void LayerPanel::update(const QRect &part)
{
    paint(part);
}

void LayerPanel::paint(const QRect &part)
{
    if (!m_isConfigured)
        return;
    m_picture.paint(m_content, part);
    m_isChanged = true;
    if (!m_frame)
        commit();
}

void LayerPanel::commit()
{
    Buffer *buffer = freeBuffer();
    if (!buffer)
        return;
    m_isChanged = false;
    if (m_viewport)
        wp_viewport_set_destination(m_viewport, m_picture.size().width(), m_picture.size().height());
    else
        wl_surface_set_buffer_scale(m_surface, int(m_picture.scale()));
    buffer->give(m_surface, m_picture.image());
    m_frame = wl_surface_frame(m_surface);
    static constexpr wl_callback_listener listener{.done = [](void *data, wl_callback *, uint32_t) {
        auto &self = *static_cast<LayerPanel *>(data);
        destroy(self.m_frame, wl_callback_destroy);
        if (self.m_isChanged)
            self.commit();
    }};
    wl_callback_add_listener(m_frame, &listener, this);
    wl_surface_commit(m_surface);
    m_connection.flush();
}

auto LayerPanel::freeBuffer() -> Buffer *
{
    for (auto &buffer : m_buffers) {
        if (buffer && !buffer->fits(m_picture.image().size()))
            buffer.reset();
        if (!buffer)
            buffer = std::make_unique<Buffer>(m_shm, m_picture.image().size());
        if (buffer->isFree())
            return buffer.get();
    }
    return nullptr;
}

void LayerPanel::announce(const QString &text)
{
    m_spoken.setShown(m_surface);
    m_spoken.announce(text);
}
