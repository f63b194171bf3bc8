#include "form/run.h"

Run run;
