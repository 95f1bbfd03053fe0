#include "backup/blob/blob.h"
