// Texts of the "kr" library: English until they are translated.
#include "en.h"
