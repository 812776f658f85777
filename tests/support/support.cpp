#include "TestMain.h"
