#include "form/form1.h"

Form1 form1;
