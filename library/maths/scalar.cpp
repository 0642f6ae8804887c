#include "library/maths/scalar.h"

int32_t FloatToInt(double value)
{
    if (value > -2147483649.0 && value < 2147483648.0)
        return static_cast<int32_t>(value);
    return INT32_MIN;
}
