#include <quillaven/maps/base_map.h>
