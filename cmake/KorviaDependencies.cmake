find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Xml Widgets Network Test)

pkg_check_modules(GST REQUIRED IMPORTED_TARGET gstreamer-1.0 gstreamer-app-1.0 gstreamer-audio-1.0
  gstreamer-base-1.0 gstreamer-video-1.0)
pkg_check_modules(GIO REQUIRED IMPORTED_TARGET gio-2.0)
pkg_check_modules(HWY REQUIRED IMPORTED_TARGET libhwy)
pkg_check_modules(ZIMG REQUIRED IMPORTED_TARGET zimg)
pkg_check_modules(EBUR128 REQUIRED IMPORTED_TARGET libebur128)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb xcb-shm)
pkg_check_modules(XCB_CAPTURE REQUIRED IMPORTED_TARGET xcb xcb-shm xcb-composite xcb-randr xcb-xfixes)
pkg_check_modules(MICROHTTPD REQUIRED IMPORTED_TARGET libmicrohttpd)
pkg_check_modules(QRENCODE REQUIRED IMPORTED_TARGET libqrencode)
pkg_check_modules(POPPLER REQUIRED IMPORTED_TARGET poppler-qt5)

find_library(YUV_LIBRARY yuv REQUIRED)
find_path(YUV_INCLUDE_DIR libyuv.h REQUIRED)
add_library(korvia_yuv INTERFACE)
target_include_directories(korvia_yuv SYSTEM INTERFACE ${YUV_INCLUDE_DIR})
target_link_libraries(korvia_yuv INTERFACE ${YUV_LIBRARY})

find_library(ZITA_LIBRARY zita-resampler REQUIRED)
find_path(ZITA_INCLUDE_DIR zita-resampler/vresampler.h REQUIRED)
add_library(korvia_zita INTERFACE)
target_include_directories(korvia_zita SYSTEM INTERFACE ${ZITA_INCLUDE_DIR})
target_link_libraries(korvia_zita INTERFACE ${ZITA_LIBRARY})

# Not by pkg-config: its description asks for development packages that the chart does not need.
find_library(QWT_LIBRARY qwt-qt5 REQUIRED)
find_path(QWT_INCLUDE_DIR qwt_plot_legenditem.h PATH_SUFFIXES qwt REQUIRED)
add_library(korvia_qwt INTERFACE)
target_include_directories(korvia_qwt SYSTEM INTERFACE ${QWT_INCLUDE_DIR})
target_link_libraries(korvia_qwt INTERFACE ${QWT_LIBRARY})
