// A GStreamer plug-in that plugs in pretended cameras, so that the real camera code is tried on machines without any.
// The file that KELVARA_FAKE_CAMERAS names lists them, a line each: "<name> <format> <pattern>", for example
// "Webcam NV12 red". It is read again every 50 ms: lines that come and go are cameras plugged in and out.

#define PACKAGE "kelvara"
#include <gst/gst.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>

namespace {

struct Listed
{
    std::string name, format, pattern;

    [[nodiscard]] std::string caps() const
    {
        return "video/x-raw,format=" + format + ",width=320,height=240,framerate=30/1";
    }
};

std::map<std::string, Listed> readList()
{
    std::map<std::string, Listed> cameras;
    const char* path = g_getenv("KELVARA_FAKE_CAMERAS");
    std::ifstream file(path ? path : "");
    for (std::string line; std::getline(file, line);) {
        Listed camera;
        if (std::istringstream(line) >> camera.name >> camera.format >> camera.pattern)
            cameras[line] = camera;
    }
    return cameras;
}

// --- one camera

struct FakeCamera
{
    GstDevice parent;
    Listed* listed;
};
using FakeCameraClass = GstDeviceClass;
G_DEFINE_TYPE(FakeCamera, fake_camera, GST_TYPE_DEVICE) // NOLINT

GstElement* createElement(GstDevice* device, const gchar* name)
{
    const Listed& listed = *reinterpret_cast<FakeCamera*>(device)->listed;
    const std::string description
        = "videotestsrc is-live=true pattern=" + listed.pattern + " ! capsfilter caps=" + listed.caps();
    GstElement* bin = gst_parse_bin_from_description(description.c_str(), TRUE, nullptr);
    if (bin && name)
        gst_object_set_name(GST_OBJECT(bin), name);
    return bin;
}

void finalizeCamera(GObject* object)
{
    delete reinterpret_cast<FakeCamera*>(object)->listed;
    G_OBJECT_CLASS(fake_camera_parent_class)->finalize(object);
}

void fake_camera_class_init(FakeCameraClass* type)
{
    type->create_element = createElement;
    G_OBJECT_CLASS(type)->finalize = finalizeCamera;
}

void fake_camera_init(FakeCamera*) { }

GstDevice* newCamera(const Listed& listed)
{
    GstCaps* caps = gst_caps_from_string(listed.caps().c_str());
    auto* camera = static_cast<FakeCamera*>(g_object_new(fake_camera_get_type(), "display-name", listed.name.c_str(),
        "device-class", "Video/Source", "caps", caps, nullptr));
    gst_caps_unref(caps);
    camera->listed = new Listed(listed);
    return reinterpret_cast<GstDevice*>(camera);
}

// --- what lists them

struct Watch
{
    std::map<std::string, GstDevice*> plugged;
    std::atomic<bool> running { false };
    std::thread thread;

    void look(GstDeviceProvider* provider)
    {
        const auto wanted = readList();
        for (auto it = plugged.begin(); it != plugged.end();) {
            if (wanted.count(it->first) != 0) {
                ++it;
                continue;
            }
            gst_device_provider_device_remove(provider, it->second);
            gst_object_unref(it->second);
            it = plugged.erase(it);
        }
        for (const auto& [line, listed] : wanted)
            if (plugged.count(line) == 0) {
                plugged[line] = GST_DEVICE(gst_object_ref_sink(newCamera(listed)));
                gst_device_provider_device_add(provider, plugged[line]);
            }
    }
};

struct FakeProvider
{
    GstDeviceProvider parent;
    Watch* watch;
};
using FakeProviderClass = GstDeviceProviderClass;
G_DEFINE_TYPE(FakeProvider, fake_provider, GST_TYPE_DEVICE_PROVIDER) // NOLINT

GList* probe(GstDeviceProvider*)
{
    GList* devices = nullptr;
    for (const auto& [line, listed] : readList())
        devices = g_list_append(devices, gst_object_ref_sink(newCamera(listed)));
    return devices;
}

gboolean startWatching(GstDeviceProvider* provider)
{
    Watch* watch = reinterpret_cast<FakeProvider*>(provider)->watch;
    watch->look(provider);
    watch->running = true;
    watch->thread = std::thread([=] {
        while (watch->running) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            watch->look(provider);
        }
    });
    return TRUE;
}

void stopWatching(GstDeviceProvider* provider)
{
    Watch* watch = reinterpret_cast<FakeProvider*>(provider)->watch;
    watch->running = false;
    watch->thread.join();
}

void fake_provider_class_init(FakeProviderClass* type)
{
    type->probe = probe;
    type->start = startWatching;
    type->stop = stopWatching;
    gst_device_provider_class_set_static_metadata(
        type, "Pretended cameras", "Source/Video", "Cameras for tests", "Kelvara");
}

void fake_provider_init(FakeProvider* provider)
{
    provider->watch = new Watch; // for the life of the process, as the provider itself
}

gboolean initialize(GstPlugin* plugin)
{
    return gst_device_provider_register(plugin, "kelvarafakecameras", GST_RANK_PRIMARY, fake_provider_get_type());
}

} // namespace

GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, kelvarafakecameras, "Pretended cameras", initialize, "1.0",
    GST_LICENSE_UNKNOWN, PACKAGE, "https://example.invalid")
