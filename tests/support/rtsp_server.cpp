// An RTSP server for tests: hands on the MPEG-TS that comes to a UDP port of the loopback, H.264 and AAC.
// usage: korvia-test-rtsp-server RTSP_PORT UDP_PORT
#include <gst/rtsp-server/rtsp-server.h>

int main(int argc, char** argv) {
  if (argc != 3)
    return 2;
  gst_init(nullptr, nullptr);
  GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
  GstRTSPServer* server = gst_rtsp_server_new();
  gst_rtsp_server_set_address(server, "127.0.0.1");
  gst_rtsp_server_set_service(server, argv[1]);
  GstRTSPMediaFactory* factory = gst_rtsp_media_factory_new();
  gchar* launch = g_strdup_printf(
      "( udpsrc address=127.0.0.1 port=%s ! tsdemux latency=1 name=d "
      "d. ! queue ! h264parse config-interval=-1 ! rtph264pay name=pay0 pt=96 "
      "d. ! queue ! aacparse ! rtpmp4gpay name=pay1 pt=97 )",
      argv[2]);
  gst_rtsp_media_factory_set_launch(factory, launch);
  g_free(launch);
  gst_rtsp_media_factory_set_shared(factory, TRUE);
  GstRTSPMountPoints* mounts = gst_rtsp_server_get_mount_points(server);
  gst_rtsp_mount_points_add_factory(mounts, "/live", factory);
  g_object_unref(mounts);
  if (gst_rtsp_server_attach(server, nullptr) == 0)
    return 1;
  g_main_loop_run(loop);
}
