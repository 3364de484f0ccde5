// Texts of the "ja" library: English until they are translated.
#include "en.h"
