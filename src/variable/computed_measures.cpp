// The tables of computed measures, the choice among them, and the handler of one family of solvers.

#include "variable/computed_measures.h"

#include <iterator>

#include "filer/container.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_filer.h"

namespace orvio {
namespace {

constexpr ORVExtVarEntry kVector[] = {
    {ORV_COMPUTE_MAGNITUDE, 3, "Magnitude"},
};

// Without its last row this is the table of stresses: their equivalent is "Von Mises".
constexpr ORVExtVarEntry kTensor[] = {
    {ORV_COMPUTE_VON_MISES, 6, "Von Mises"},
    {ORV_COMPUTE_TRESCA, 6, "Tresca"},
    {ORV_COMPUTE_PRESSURE, 6, "Pressure"},
    {ORV_COMPUTE_MEAN, 6, "Mean"},
    {ORV_COMPUTE_FIRST_PRINCIPAL, 6, "First Princ."},
    {ORV_COMPUTE_SECOND_PRINCIPAL, 6, "Second Princ."},
    {ORV_COMPUTE_THIRD_PRINCIPAL, 6, "Third Princ."},
    {ORV_COMPUTE_DETERMINANT, 6, "Determinant"},
    {ORV_COMPUTE_EQUIVALENT, 6, "Equivalent"},
};

constexpr ORVExtVarEntry kPlaneTensor[] = {
    {ORV_COMPUTE_PLANE_FIRST, 3, "First Princ."},
    {ORV_COMPUTE_PLANE_SECOND, 3, "Second Princ."},
};

constexpr ORVExtVarEntry kCmxTensor[] = {
    {ORV_COMPUTE_FIRST_PRINCIPAL, 6, "First Princ."},
    {ORV_COMPUTE_SECOND_PRINCIPAL, 6, "Second Princ."},
    {ORV_COMPUTE_THIRD_PRINCIPAL, 6, "Third Princ."},
    {ORV_COMPUTE_VON_MISES, 6, "Von Mises"},
    {ORV_COMPUTE_MEAN, 6, "Mean"},
    {ORV_COMPUTE_TRESCA, 6, "Tresca"},
};

template <int N>
constexpr ORVExtVarType Row(_ORVVarType shape, const ORVExtVarEntry (&entries)[N], int count = N) {
  return {shape, count, entries};
}

constexpr ORVExtVarType kGeneral[] = {
    Row(ORV_VARTYPE_VECTOR, kVector),
    Row(ORV_VARTYPE_TENSOR, kTensor),
    Row(ORV_VARTYPE_PLANE_TENSOR, kPlaneTensor),
};
constexpr ORVExtVarType kStress[] = {
    Row(ORV_VARTYPE_VECTOR, kVector),
    Row(ORV_VARTYPE_TENSOR, kTensor, std::size(kTensor) - 1),
    Row(ORV_VARTYPE_PLANE_TENSOR, kPlaneTensor),
};
constexpr ORVExtVarType kCmx = Row(ORV_VARTYPE_TENSOR, kCmxTensor);

/// The handler's type is fixed and lets hosts hand out rows of their own that they change. Nobody changes these.
ORVExtVarType* AsAnswer(const ORVExtVarType& row) { return const_cast<ORVExtVarType*>(&row); }

/// Six measures for every tensor, none for scalars, and the built-in ones for the rest.
ORVExtVarType* CmxMeasures(void* /*client*/, ORVFilerExtendComputedTypeCallBackData& data) {
  if (!data.m_pVariable) return nullptr;
  _ORVVarType shape = ORV_VARTYPE_SCALAR;
  _ORVVarClassType var_class = ORV_VARCLASS_UNKNOWN;
  int count = 0;
  int offset = 0;
  if (data.m_pVariable->GetVariableInfo(shape, var_class, count, offset) != kOk) return nullptr;
  return shape == ORV_VARTYPE_TENSOR ? AsAnswer(kCmx) : FindBuiltInMeasures(shape, var_class);
}

}  // namespace

ORVExtVarType* FindBuiltInMeasures(_ORVVarType shape, _ORVVarClassType var_class) {
  const auto& table = var_class == ORV_VARCLASS_STRESS ? kStress : kGeneral;
  for (const ORVExtVarType& row : table) {
    if (row.m_varType == shape) return AsAnswer(row);
  }
  return nullptr;
}

ORVExtVarType* GetExtendedInfo(ORVFiler& filer, const ORVContainer& data, ORVResult* result, ORVVariable& variable,
                               _ORVVarType shape, _ORVVarClassType var_class) {
  if (!data.computed_types) return FindBuiltInMeasures(shape, var_class);
  constexpr int kVariableIsExtended = 1;  // the one reason for which a handler is asked
  ORVFilerExtendComputedTypeCallBackData request = {&filer, kVariableIsExtended, result, &variable};
  const h5::HostCode with_host;
  return data.computed_types(data.callback_client, request);
}

}  // namespace orvio

void ORVSetCMXStressComputedType(ORVFiler* filer) {
  if (!filer) return;
  (void)filer->SetFilerCallBackClient(nullptr);  // the former client belongs to the former handler
  filer->SetExtedComputedTypeCallBackHandler(orvio::CmxMeasures);
}
