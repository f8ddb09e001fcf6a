#include <quillaven/foundation/numbers.h>
