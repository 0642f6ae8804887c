#include "particles/cindermill/interface/trace/traceplot.h"

#include "support/testsupport.h"
