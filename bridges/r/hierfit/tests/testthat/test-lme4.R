test_that("a linear mixed fit has the numbers of lmerTest", {
  needs("lmerTest", "emmeans")
  fit <- lmerTest::lmer(Reaction ~ Days + (Days | Subject), lme4::sleepstudy)
  x <- hierfit(fit)
  expect_coefficients(x, coef(summary(fit)))
  rows <- tidied(x)
  expect_same(rows$df, coef(summary(fit))[, "df"])
  expect_same(rows$p.value, coef(summary(fit))[, "Pr(>|t|)"], 1e-7)
  test <- anova(fit)
  expect_same(as.list(x)$tests$effects[[1]]$statistic, test$`F value`)
  expect_same(as.list(x)$tests$effects[[1]]$den.df, test$DenDF)
  block <- as.list(x)$random[[1]]
  expect_same(unlist(lapply(block$covariances[[1]]$matrix, unlist)),
              lme4::VarCorr(fit)$Subject[c(1, 2, 4)])
  expect_equal(block$structure, "unstructured")
  expect_same(as.list(x)$statistics$logLik, logLik(fit))
  expect_same(as.list(x)$statistics$BIC, BIC(fit))
})

test_that("standard errors of variances and covariances are those of another engine", {
  needs("lmerTest", "glmmTMB")
  se <- function(fit) tidied(hierfit(fit, df = "asymptotic"), "random")$std.error
  for (formula in list(Reaction ~ Days + (Days | Subject), Reaction ~ Days + (Days || Subject))) {
    by_lmer <- se(lme4::lmer(formula, lme4::sleepstudy))
    expect_equal(by_lmer, se(glmmTMB::glmmTMB(formula, lme4::sleepstudy, REML = TRUE)),
                 tolerance = 1e-4)
    expect_true(all(by_lmer > 0))
  }
  formula <- cbind(incidence, size - incidence) ~ period + (1 | herd)
  expect_equal(se(lme4::glmer(formula, lme4::cbpp, binomial))[1],
               se(glmmTMB::glmmTMB(formula, lme4::cbpp, family = binomial))[1], tolerance = 1e-2)
})

test_that("tests of type III hold where a factor crosses a covariate", {
  needs("lmerTest", "nlme")
  data <- as.data.frame(nlme::Orthodont)
  fit <- lmerTest::lmer(distance ~ Sex * age + (1 | Subject), data)
  expected <- anova(fit, type = 3)
  tests <- tidied(hierfit(fit), "tests")[-1, ]
  expect_same(tests$statistic, expected$`F value`, 1e-8)
  expect_same(tests$den.df, expected$DenDF, 1e-8)
  # The slope is the mean of both slopes, not that of the first group.
  expect_false(isTRUE(all.equal(tests$statistic[2], unname(coef(summary(fit))["age", "t value"]^2))))
  kenward <- tidied(hierfit(fit, df = "kenward-roger"), "tests")[-1, ]
  expected <- anova(fit, type = 3, ddf = "Kenward-Roger")
  expect_same(kenward$statistic, expected$`F value`, 1e-8)
  expect_same(kenward$den.df, expected$DenDF, 1e-8)
})

test_that("nested, crossed and diagonal blocks are told apart", {
  needs("lme4", "nlme")
  nested <- as.list(hierfit(lme4::lmer(yield ~ nitro + (1 | Block / Variety), nlme::Oats),
                            df = "residual"))
  expect_equal(lapply(nested$random, function(block) as.character(block$subjects)),
               list("Block", c("Block", "Variety")))
  expect_equal(as.character(nested$residual$subjects), "Block")
  crossed <- as.list(hierfit(lme4::lmer(diameter ~ 1 + (1 | plate) + (1 | sample), lme4::Penicillin),
                             df = "residual"))
  expect_null(crossed$residual$subjects)
  expect_equal(crossed$tests, NULL)
  diagonal <- as.list(hierfit(lme4::lmer(Reaction ~ Days + (Days || Subject), lme4::sleepstudy),
                              df = "residual"))
  expect_length(diagonal$random, 1)
  expect_equal(diagonal$random[[1]]$structure, "diagonal")
  expect_length(diagonal$random[[1]]$parameters, 2)
  machines <- lme4::lmer(score ~ Machine + (Machine | Worker), nlme::Machines)
  terms <- as.list(hierfit(machines, df = "residual"))$random[[1]]$terms
  expect_equal(lapply(terms, function(term) term$levels$Machine), list(NULL, "B", "C"))
})

test_that("a generalized fit has its trials, its family and its degrees of freedom", {
  needs("lme4", "emmeans")
  fit <- lme4::glmer(cbind(incidence, size - incidence) ~ period + (1 | herd), lme4::cbpp, binomial)
  x <- hierfit(fit)
  expect_coefficients(x, coef(summary(fit)))
  expect_equal(as.list(x)$target, list(variable = "incidence", trials = "size"))
  expect_same(as.list(x)$data$predicted, fitted(fit) * lme4::cbpp$size)
  expect_null(as.list(x)$coefficients[[1]]$df)
  expect_equal(as.list(hierfit(fit, df = "residual"))$coefficients[[1]]$df, 51)
  negative <- suppressWarnings(lme4::glmer.nb(incidence ~ 1 + (1 | herd), lme4::cbpp))
  document <- as.list(hierfit(negative))
  expect_equal(document$distribution, "negative binomial")
  expect_same(document$residual$parameters[[2]]$estimate, 1 / lme4::getME(negative, "glmer.nb.theta"))
})

test_that("profile intervals and repeated measures are taken where they are", {
  needs("lme4")
  fit <- lme4::lmer(yield ~ nitro + (1 | Block / Variety), nlme::Oats)
  document <- as.list(hierfit(fit, df = "residual", intervals = "profile", repeated = "nitro"))
  limits <- suppressMessages(confint(fit, "theta_"))^2
  ours <- lapply(c(document$random, list(document$residual)), function(block) {
    unlist(block$parameters[[1]][c("conf.low", "conf.high")])
  })
  expect_same(do.call(rbind, ours), limits[c(2, 1, 3), ])
  expect_equal(as.vector(document$data$columns$nitro), nlme::Oats$nitro)
  expect_error(hierfit(lm(yield ~ nitro, nlme::Oats), intervals = "profile"), "wald")
  expect_error(hierfit(fit, repeated = "plot"), "plot is no variable")
})

test_that("what befell a fit is told", {
  needs("lme4")
  singular <- suppressMessages(lme4::lmer(Yield ~ 1 + (1 | Batch), lme4::Dyestuff2))
  document <- as.list(hierfit(singular, df = "residual"))
  expect_match(as.character(document$engine$notes), "singular", all = FALSE)
  expect_equal(as.character(document$engine$conditions), "covariance values doubtful")
  expect_null(document$random[[1]]$parameters[[1]]$std.error)
  stopped <- suppressWarnings(lme4::lmer(
    Reaction ~ Days + (Days | Subject), lme4::sleepstudy,
    control = lme4::lmerControl(optimizer = "bobyqa", optCtrl = list(maxfun = 20))))
  expect_true(length(as.list(hierfit(stopped, df = "residual"))$engine$warnings) > 0)
  data <- transform(lme4::sleepstudy, w = seq_len(180), o = Days)
  offset <- lme4::lmer(Reaction ~ Days + offset(o) + (1 | Subject), data, weights = w)
  notes <- as.character(as.list(hierfit(offset, df = "residual"))$engine$notes)
  expect_match(notes, "weights", all = FALSE)
  expect_match(notes, "offset", all = FALSE)
})
