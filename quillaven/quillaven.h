// Every public header of the library.
//
//   #include <quillaven/quillaven.h>

#pragma once

#include <quillaven/editor/dialog.h>
#include <quillaven/editor/drawing.h>
#include <quillaven/exchange/bitmap.h>
#include <quillaven/exchange/idrisi_header.h>
#include <quillaven/exchange/idrisi_palette.h>
#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/numbers.h>
#include <quillaven/foundation/paths.h>
#include <quillaven/foundation/tempfiles.h>
#include <quillaven/foundation/textio.h>
#include <quillaven/functions/spline.h>
#include <quillaven/legends/bitmap_legend.h>
#include <quillaven/legends/colors.h>
#include <quillaven/legends/map_legend.h>
#include <quillaven/maps/base_map.h>
#include <quillaven/maps/matrix_base_map.h>
#include <quillaven/network/network.h>
#include <quillaven/network/record_pool.h>
#include <quillaven/platform/api.h>
#include <quillaven/platform/application.h>
#include <quillaven/platform/archive.h>
#include <quillaven/platform/exceptions.h>
#include <quillaven/platform/files.h>
#include <quillaven/platform/ftp.h>
#include <quillaven/platform/geometry.h>
#include <quillaven/platform/modules.h>
#include <quillaven/platform/stamp_font.h>
#include <quillaven/platform/strings.h>
#include <quillaven/platform/system_paths.h>
#include <quillaven/raster/fine_block_pool.h>
#include <quillaven/raster/multiscale_matrix.h>
#include <quillaven/raster/raster_operations.h>
#include <quillaven/raster/smart_io_matrix.h>
#include <quillaven/runtime/module_version.h>
#include <quillaven/runtime/new_handler.h>
#include <quillaven/runtime/process.h>
#include <quillaven/spreadsheet/transport.h>
#include <quillaven/spreadsheet/xllink.h>
