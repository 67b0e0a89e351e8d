// The binding tables of the fit document. The JSON Schema beside this file says the same, with a
// sentence for each member.
#include "import/member.h"

namespace hierfit::fit {

// clang-format off
template <> const Shape& shape_of<Engine>();
template <> const Shape& shape_of<Format>();
template <> const Shape& shape_of<Variable>();
template <> const Shape& shape_of<Target>();
template <> const Shape& shape_of<Effect>();
template <> const Shape& shape_of<Coefficient>();
template <> const Shape& shape_of<Coding>();
template <> const Shape& shape_of<Fixed>();
template <> const Shape& shape_of<CovarianceParameter>();
template <> const Shape& shape_of<GroupMatrix>();
template <> const Shape& shape_of<Term>();
template <> const Shape& shape_of<Random>();
template <> const Shape& shape_of<Residual>();
template <> const Shape& shape_of<FTest>();
template <> const Shape& shape_of<EffectTest>();
template <> const Shape& shape_of<Tests>();
template <> const Shape& shape_of<Statistics>();
template <> const Shape& shape_of<Counts>();
template <> const Shape& shape_of<Estimate>();
template <> const Shape& shape_of<Mean>();
template <> const Shape& shape_of<Contrast>();
template <> const Shape& shape_of<OverallTest>();
template <> const Shape& shape_of<Contrasts>();
template <> const Shape& shape_of<Means>();
template <> const Shape& shape_of<EffectMeans>();
template <> const Shape& shape_of<Distribution>();
template <> const Shape& shape_of<Pairs>();
template <> const Shape& shape_of<FirstSubject>();
template <> const Shape& shape_of<Summaries>();
template <> const Shape& shape_of<Data>();
// clang-format on

namespace {

constexpr Range kWholeNotNegative = {0, 2147483647};
constexpr Range kPower = {1, 20};
constexpr Range kNesting = {0, 99};
constexpr Range kBand = {1, 9999};
constexpr Range kPositive = {1, 2147483647};
constexpr Range kWidth = {1, 999};
constexpr Range kDecimals = {0, 40};

template <typename Record>
constexpr auto estimate_members() {
  using M = MembersOf<Record>;
  return std::array{
      M::template make<&Record::estimate>("estimate"),
      M::template make<&Record::std_error>("std.error").in(kNotNegative),
      M::template make<&Record::df>("df").in(kNotNegative),
      M::template make<&Record::statistic>("statistic"),
      M::template make<&Record::p_value>("p.value").in(kProbability),
      M::template make<&Record::conf_low>("conf.low"),
      M::template make<&Record::conf_high>("conf.high"),
  };
}

template <typename Record>
constexpr auto term_members() {
  using M = MembersOf<Record>;
  return std::array{
      M::template make<&Record::name>("term"),
      M::template make<&Record::effect>("effect").in(kWholeNotNegative),
      M::template make<&Record::levels>("levels"),
      M::template make<&Record::columns>("columns"),
  };
}

template <typename Record>
constexpr auto test_members() {
  using M = MembersOf<Record>;
  return std::array{
      M::template make<&Record::statistic>("statistic"),
      M::template make<&Record::num_df>("num.df").in(kNotNegative),
      M::template make<&Record::den_df>("den.df").in(kNotNegative),
      M::template make<&Record::p_value>("p.value").in(kProbability),
  };
}

// clang-format off
using E = MembersOf<Engine>;
constexpr std::array kEngine = {
    E::make<&Engine::name>("name"),
    E::make<&Engine::version>("version"),
    E::make<&Engine::call>("call"),
    E::make<&Engine::warnings>("warnings"),
    E::make<&Engine::notes>("notes"),
    E::make<&Engine::conditions>("conditions").of(kConditions),
};

using Fm = MembersOf<Format>;
constexpr std::array kFormat = {
    Fm::make<&Format::width>("width").in(kWidth),
    Fm::make<&Format::decimals>("decimals").in(kDecimals),
};

using V = MembersOf<Variable>;
constexpr std::array kVariable = {
    V::make<&Variable::name>("name").required(),
    V::make<&Variable::label>("label"),
    V::make<&Variable::level>("level").of(kLevels),
    V::make<&Variable::type>("type").of(kTypes),
    V::make<&Variable::values>("values"),
    V::make<&Variable::labels>("labels"),
    V::make<&Variable::format>("format"),
};

using T = MembersOf<Target>;
constexpr std::array kTarget = {
    T::make<&Target::variable>("variable").required(),
    T::make<&Target::trials>("trials"),
    T::make<&Target::trials_constant>("trials.constant").in(kPositive),
    T::make<&Target::reference>("reference"),
    T::make<&Target::order>("order"),
};

using Ef = MembersOf<Effect>;
constexpr std::array kEffect = {
    Ef::make<&Effect::fields>("fields").required(),
    Ef::make<&Effect::powers>("powers").in(kPower),
    Ef::make<&Effect::nesting>("nesting").in(kNesting),
};

using Co = MembersOf<Coefficient>;
constexpr std::array kCoefficient =
    term_members<Coefficient>() + estimate_members<Coefficient>() + std::array{
    Co::make<&Coefficient::category>("y.level"),
    Co::make<&Coefficient::threshold>("threshold"),
    Co::make<&Coefficient::exp>("exp"),
    Co::make<&Coefficient::exp_low>("exp.low"),
    Co::make<&Coefficient::exp_high>("exp.high"),
};

using Cd = MembersOf<Coding>;
constexpr std::array kCoding = {
    Cd::make<&Coding::variable>("variable").required(),
    Cd::make<&Coding::matrix>("matrix").required(),
};

using Fx = MembersOf<Fixed>;
constexpr std::array kFixed = {
    Fx::make<&Fixed::intercept>("intercept"),
    Fx::make<&Fixed::effects>("effects"),
    Fx::make<&Fixed::codings>("codings"),
};

using P = MembersOf<CovarianceParameter>;
constexpr std::array kParameter = std::array{
    P::make<&CovarianceParameter::parameter>("parameter").required(),
    P::make<&CovarianceParameter::effect>("effect").in(kWholeNotNegative),
    P::make<&CovarianceParameter::terms>("terms").in(kWholeNotNegative),
    P::make<&CovarianceParameter::levels>("levels"),
    P::make<&CovarianceParameter::fixed>("fixed"),
} + estimate_members<CovarianceParameter>();

using G = MembersOf<GroupMatrix>;
constexpr std::array kGroupMatrix = {
    G::make<&GroupMatrix::levels>("levels"),
    G::make<&GroupMatrix::matrix>("matrix").required(),
};

constexpr std::array kTerm = term_members<Term>();

using R = MembersOf<Random>;
constexpr std::array kRandom = {
    R::make<&Random::subjects>("subjects"),
    R::make<&Random::nesting>("nesting").in(kNesting),
    R::make<&Random::groups>("groups"),
    R::make<&Random::structure>("structure").of(kStructures),
    R::make<&Random::band>("band").in(kBand),
    R::make<&Random::intercept>("intercept"),
    R::make<&Random::effects>("effects"),
    R::make<&Random::terms>("terms"),
    R::make<&Random::parameters>("parameters"),
    R::make<&Random::covariances>("covariances"),
};

using Rs = MembersOf<Residual>;
constexpr std::array kResidual = {
    Rs::make<&Residual::subjects>("subjects"),
    Rs::make<&Residual::nesting>("nesting").in(kNesting),
    Rs::make<&Residual::groups>("groups"),
    Rs::make<&Residual::structure>("structure").of(kStructures),
    Rs::make<&Residual::band>("band").in(kBand),
    Rs::make<&Residual::repeated>("repeated"),
    Rs::make<&Residual::parameters>("parameters"),
};

using Et = MembersOf<EffectTest>;
constexpr std::array kFTest = test_members<FTest>();
constexpr std::array kEffectTest = test_members<EffectTest>() + std::array{
    Et::make<&EffectTest::effect>("effect").in(kWholeNotNegative).required(),
};

using Ts = MembersOf<Tests>;
constexpr std::array kTests = {
    Ts::make<&Tests::type>("type").of(kTestTypes),
    Ts::make<&Tests::model>("model"),
    Ts::make<&Tests::effects>("effects"),
};

using S = MembersOf<Statistics>;
constexpr std::array kStatistics = {
    S::make<&Statistics::aicc>("AICc"),
    S::make<&Statistics::bic>("BIC"),
    S::make<&Statistics::log_likelihood>("logLik"),
    S::make<&Statistics::accuracy>("accuracy").in(kProbability),
};

using Cs = MembersOf<Counts>;
constexpr std::array kCounts = {
    Cs::make<&Counts::residual_parameters>("residual.parameters").in(kWholeNotNegative),
    Cs::make<&Counts::random_parameters>("random.parameters").in(kWholeNotNegative),
    Cs::make<&Counts::fixed_columns>("fixed.columns").in(kWholeNotNegative),
    Cs::make<&Counts::random_columns>("random.columns").in(kWholeNotNegative),
    Cs::make<&Counts::common_subjects>("common.subjects").in(kWholeNotNegative),
};

constexpr std::array kEstimate = estimate_members<Estimate>();

using Mn = MembersOf<Mean>;
constexpr std::array kMean = std::array{
    Mn::make<&Mean::levels>("levels").required(),
} + estimate_members<Mean>();

using Cn = MembersOf<Contrast>;
constexpr std::array kContrast = std::array{
    Cn::make<&Contrast::levels>("levels"),
    Cn::make<&Contrast::level>("level").required(),
    Cn::make<&Contrast::against>("against"),
    Cn::make<&Contrast::adjusted_p_value>("adj.p.value").in(kProbability),
} + estimate_members<Contrast>();

using O = MembersOf<OverallTest>;
constexpr std::array kOverallTest = test_members<OverallTest>() + std::array{
    O::make<&OverallTest::levels>("levels"),
};

using Cx = MembersOf<Contrasts>;
constexpr std::array kContrasts = {
    Cx::make<&Contrasts::compare>("compare").required(),
    Cx::make<&Contrasts::type>("type").of(kContrastTypes).required(),
    Cx::make<&Contrasts::reference>("reference"),
    Cx::make<&Contrasts::significance_level>("significance.level").in(kProbability),
    Cx::make<&Contrasts::rows>("rows").required(),
    Cx::make<&Contrasts::covariance>("vcov"),
};

using Ms = MembersOf<Means>;
constexpr std::array kMeans = {
    Ms::make<&Means::fields>("fields").required(),
    Ms::make<&Means::at>("at"),
    Ms::make<&Means::scale>("scale").of(kScales),
    Ms::make<&Means::rows>("rows").required(),
    Ms::make<&Means::contrasts>("contrasts"),
    Ms::make<&Means::tests>("tests"),
    Ms::make<&Means::conditions>("conditions").of(kMeansConditions),
};

using Em = MembersOf<EffectMeans>;
constexpr std::array kEffectMeans = {
    Em::make<&EffectMeans::fields>("fields").required(),
    Em::make<&EffectMeans::rows>("rows").required(),
};

using D = MembersOf<Distribution>;
constexpr std::array kDistribution = {
    D::make<&Distribution::mean>("mean"),
    D::make<&Distribution::deviation>("sd").in(kNotNegative),
    D::make<&Distribution::shape>("shape"),
    D::make<&Distribution::rate>("rate"),
    D::make<&Distribution::r>("r"),
    D::make<&Distribution::p>("p"),
    D::make<&Distribution::bins>("bins").required(),
    D::make<&Distribution::counts>("counts").in(kNotNegative).required(),
};

using Pr = MembersOf<Pairs>;
constexpr std::array kPairs = {
    Pr::make<&Pairs::observed>("observed").required(),
    Pr::make<&Pairs::predicted>("predicted").required(),
    Pr::make<&Pairs::counts>("counts").in(kNotNegative),
};

using Fs = MembersOf<FirstSubject>;
constexpr std::array kFirstSubject = {
    Fs::make<&FirstSubject::subject>("subject"),
    Fs::make<&FirstSubject::records>("records").in(kWholeNotNegative),
    Fs::make<&FirstSubject::repeated>("repeated"),
    Fs::make<&FirstSubject::target>("target").required(),
    Fs::make<&FirstSubject::trials>("trials"),
};

using Su = MembersOf<Summaries>;
constexpr std::array kSummaries = {
    Su::make<&Summaries::records>("records").in(kWholeNotNegative),
    Su::make<&Summaries::target>("target"),
    Su::make<&Summaries::predicted>("predicted"),
    Su::make<&Summaries::classification>("classification").in(kNotNegative),
    Su::make<&Summaries::first_subject>("first.subject"),
};

using Da = MembersOf<Data>;
constexpr std::array kData = {
    Da::make<&Data::columns>("columns").required(),
    Da::make<&Data::predicted>("predicted"),
    Da::make<&Data::hash>("hash"),
};

using F = MembersOf<Fit>;
constexpr std::array kFit = {
    F::make<&Fit::format>("hierfit").of(kFormats).required(),
    F::make<&Fit::engine>("engine"),
    F::make<&Fit::name>("name"),
    F::make<&Fit::title>("title"),
    F::make<&Fit::formula>("formula"),
    F::make<&Fit::variables>("variables").required(),
    F::make<&Fit::target>("target").required(),
    F::make<&Fit::distribution>("distribution").of(kDistributions).required(),
    F::make<&Fit::link>("link").of(kLinks).required(),
    F::make<&Fit::link_parameter>("link.parameter"),
    F::make<&Fit::fixed>("fixed"),
    F::make<&Fit::random>("random"),
    F::make<&Fit::residual>("residual"),
    F::make<&Fit::coefficients>("coefficients"),
    F::make<&Fit::covariance>("vcov"),
    F::make<&Fit::tests>("tests"),
    F::make<&Fit::statistics>("statistics"),
    F::make<&Fit::grand_mean>("grand.mean"),
    F::make<&Fit::counts>("counts"),
    F::make<&Fit::conf_level>("conf.level").in(kInsideProbability),
    F::make<&Fit::df_method>("df.method").of(kDfMethods),
    F::make<&Fit::adjust>("adjust").of(kAdjustments),
    F::make<&Fit::effect_means>("effect.means"),
    F::make<&Fit::means>("means"),
    F::make<&Fit::data>("data"),
    F::make<&Fit::summaries>("summaries"),
};
// clang-format on

}  // namespace

/// A binding table as the shape of its record.
template <const auto& Table>
const Shape& shape_from() {
  static constexpr Shape kShape = {Table};
  return kShape;
}

// clang-format off
template <> const Shape& shape_of<Engine>() { return shape_from<kEngine>(); }
template <> const Shape& shape_of<Format>() { return shape_from<kFormat>(); }
template <> const Shape& shape_of<Variable>() { return shape_from<kVariable>(); }
template <> const Shape& shape_of<Target>() { return shape_from<kTarget>(); }
template <> const Shape& shape_of<Effect>() { return shape_from<kEffect>(); }
template <> const Shape& shape_of<Coefficient>() { return shape_from<kCoefficient>(); }
template <> const Shape& shape_of<Coding>() { return shape_from<kCoding>(); }
template <> const Shape& shape_of<Fixed>() { return shape_from<kFixed>(); }
template <> const Shape& shape_of<CovarianceParameter>() { return shape_from<kParameter>(); }
template <> const Shape& shape_of<GroupMatrix>() { return shape_from<kGroupMatrix>(); }
template <> const Shape& shape_of<Term>() { return shape_from<kTerm>(); }
template <> const Shape& shape_of<Random>() { return shape_from<kRandom>(); }
template <> const Shape& shape_of<Residual>() { return shape_from<kResidual>(); }
template <> const Shape& shape_of<FTest>() { return shape_from<kFTest>(); }
template <> const Shape& shape_of<EffectTest>() { return shape_from<kEffectTest>(); }
template <> const Shape& shape_of<Tests>() { return shape_from<kTests>(); }
template <> const Shape& shape_of<Statistics>() { return shape_from<kStatistics>(); }
template <> const Shape& shape_of<Counts>() { return shape_from<kCounts>(); }
template <> const Shape& shape_of<Estimate>() { return shape_from<kEstimate>(); }
template <> const Shape& shape_of<Mean>() { return shape_from<kMean>(); }
template <> const Shape& shape_of<Contrast>() { return shape_from<kContrast>(); }
template <> const Shape& shape_of<OverallTest>() { return shape_from<kOverallTest>(); }
template <> const Shape& shape_of<Contrasts>() { return shape_from<kContrasts>(); }
template <> const Shape& shape_of<Means>() { return shape_from<kMeans>(); }
template <> const Shape& shape_of<EffectMeans>() { return shape_from<kEffectMeans>(); }
template <> const Shape& shape_of<Distribution>() { return shape_from<kDistribution>(); }
template <> const Shape& shape_of<Pairs>() { return shape_from<kPairs>(); }
template <> const Shape& shape_of<FirstSubject>() { return shape_from<kFirstSubject>(); }
template <> const Shape& shape_of<Summaries>() { return shape_from<kSummaries>(); }
template <> const Shape& shape_of<Data>() { return shape_from<kData>(); }
template <> const Shape& shape_of<Fit>() { return shape_from<kFit>(); }
// clang-format on

}  // namespace hierfit::fit
