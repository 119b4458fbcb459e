#include "sega8/sms.h"
