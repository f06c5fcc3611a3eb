#include "host/Anfitrion.h"
