#include "toolkit.h"
