// Texts of the "chs" library: English until they are translated.
#include "en.h"
