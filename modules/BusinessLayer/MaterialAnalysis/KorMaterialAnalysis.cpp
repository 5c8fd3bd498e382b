#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"
