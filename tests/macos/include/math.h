// The C library's declarations for scripts/check-macos: those that libc++'s headers and we need.
#pragma once

extern "C" {

// Each function for doubles, floats and long doubles.
#define LMX_ONE(name)   \
  double name(double);  \
  float name##f(float); \
  long double name##l(long double)
#define LMX_TWO(name)          \
  double name(double, double); \
  float name##f(float, float); \
  long double name##l(long double, long double)
#define LMX_WITH(name, Other)  \
  double name(double, Other);  \
  float name##f(float, Other); \
  long double name##l(long double, Other)

LMX_ONE(acos);
LMX_ONE(acosh);
LMX_ONE(asin);
LMX_ONE(asinh);
LMX_ONE(atan);
LMX_ONE(atanh);
LMX_ONE(cbrt);
LMX_ONE(ceil);
LMX_ONE(cos);
LMX_ONE(cosh);
LMX_ONE(erf);
LMX_ONE(erfc);
LMX_ONE(exp);
LMX_ONE(exp2);
LMX_ONE(expm1);
LMX_ONE(fabs);
LMX_ONE(floor);
LMX_ONE(lgamma);
LMX_ONE(log);
LMX_ONE(log10);
LMX_ONE(log1p);
LMX_ONE(log2);
LMX_ONE(logb);
LMX_ONE(nearbyint);
LMX_ONE(rint);
LMX_ONE(round);
LMX_ONE(sin);
LMX_ONE(sinh);
LMX_ONE(sqrt);
LMX_ONE(tan);
LMX_ONE(tanh);
LMX_ONE(tgamma);
LMX_ONE(trunc);

LMX_TWO(atan2);
LMX_TWO(copysign);
LMX_TWO(fdim);
LMX_TWO(fmax);
LMX_TWO(fmin);
LMX_TWO(fmod);
LMX_TWO(hypot);
LMX_TWO(nextafter);
LMX_TWO(pow);
LMX_TWO(remainder);

LMX_WITH(frexp, int*);
LMX_WITH(ldexp, int);
LMX_WITH(nexttoward, long double);
LMX_WITH(scalbln, long);
LMX_WITH(scalbn, int);

double modf(double, double*);
float modff(float, float*);
long double modfl(long double, long double*);
double remquo(double, double, int*);
float remquof(float, float, int*);
long double remquol(long double, long double, int*);
double fma(double, double, double);
float fmaf(float, float, float);
long double fmal(long double, long double, long double);

#define LMX_TO(Integer, name) \
  Integer name(double);       \
  Integer name##f(float);     \
  Integer name##l(long double)

LMX_TO(int, ilogb);
LMX_TO(long, lrint);
LMX_TO(long, lround);
LMX_TO(long long, llrint);
LMX_TO(long long, llround);

#undef LMX_ONE
#undef LMX_TWO
#undef LMX_WITH
#undef LMX_TO
}

#define FP_NAN 1
#define FP_INFINITE 2
#define FP_ZERO 3
#define FP_NORMAL 4
#define FP_SUBNORMAL 5
#define fpclassify(x) __builtin_fpclassify(FP_NAN, FP_INFINITE, FP_NORMAL, FP_SUBNORMAL, FP_ZERO, x)
#define signbit(x) __builtin_signbit(x)
#define isfinite(x) __builtin_isfinite(x)
#define isinf(x) __builtin_isinf(x)
#define isnan(x) __builtin_isnan(x)
#define isnormal(x) __builtin_isnormal(x)
#define isgreater(x, y) __builtin_isgreater(x, y)
#define isgreaterequal(x, y) __builtin_isgreaterequal(x, y)
#define isless(x, y) __builtin_isless(x, y)
#define islessequal(x, y) __builtin_islessequal(x, y)
#define islessgreater(x, y) __builtin_islessgreater(x, y)
#define isunordered(x, y) __builtin_isunordered(x, y)
#define HUGE_VAL __builtin_huge_val()
