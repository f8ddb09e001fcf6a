#include <quillaven/foundation/paths.h>
