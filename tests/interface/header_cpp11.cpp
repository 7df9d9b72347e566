// The header and the layout it promises, as strict C++11.
#include "layout.h"
