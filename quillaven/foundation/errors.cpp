#include <quillaven/foundation/errors.h>
