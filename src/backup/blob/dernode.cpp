#include "backup/blob/dernode.h"
