/* The header and the layout it promises, as strict C99. */
#include "layout.h"
