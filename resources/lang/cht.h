// Texts of the "cht" library: English until they are translated.
#include "en.h"
