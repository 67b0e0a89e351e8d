fit <- lm(breaks ~ wool * tension, warpbreaks)

test_that("a report is shown and written in its forms", {
  needs_program()
  x <- hierfit(fit, means = ~ tension | wool, labels = c(breaks = "Breaks"), title = "Looms")
  text <- format(x, width = 60, language = "en")
  expect_match(text, "Breaks", all = FALSE)
  expect_true(max(nchar(text)) <= 60)
  expect_output(print(x, language = "en"), "Fixed coefficients")
  folder <- own_folder()
  files <- file.path(folder, c("a.html", "b.docx", "c d.txt"))
  write_report(x, files, style = "apa", language = "de")
  expect_true(all(file.exists(files)))
  expect_match(readLines(files[3], encoding = "UTF-8"), "Feste Effekte|Feste Koeffizienten", all = FALSE)
  expect_error(write_report(x, file.path(folder, "a.what")), "ending|form")
  expect_error(write_report(x), "needs a file")
})

test_that("the cells of a report are the numbers of the fit, to the last bit", {
  needs_program()
  cells <- as.data.frame(hierfit(fit))
  expect_identical(value_of(cells, "FixedCoefficients", "wool=B", "Coefficient"), coef(fit)[["woolB"]])
  expect_identical(value_of(cells, "FixedCoefficients", "wool=B", "Std. error"),
                   sqrt(diag(vcov(fit)))[["woolB"]])
})

test_that("documents hold no records unless they are asked for", {
  needs_program()
  folder <- own_folder()
  before <- list.files(tempdir(), "^hierfit")
  write_documents(hierfit(fit), folder)
  expect_setequal(list.files(folder), c("model.pmml", "result.xml", "fit.json"))
  expect_null(jsonlite::read_json(file.path(folder, "fit.json"))$data)
  write_documents(hierfit(fit), folder, data = TRUE)
  expect_length(jsonlite::read_json(file.path(folder, "fit.json"))$data$columns$breaks, 54)
  expect_setequal(list.files(tempdir(), "^hierfit"), before)
})

test_that("records that a call holds are not told", {
  held <- do.call("lm", list(breaks ~ wool, data = warpbreaks))
  expect_equal(as.list(hierfit(held))$engine$call, "lm(formula = breaks ~ wool, data = ...)")
})

test_that("each class makes a report without a word of warning", {
  needs_program()
  needs("lme4", "glmmTMB", "nlme", "ordinal", "nnet", "MASS", "emmeans")
  fits <- list(
    lme4::lmer(Reaction ~ Days + (Days | Subject), lme4::sleepstudy),
    lme4::glmer(cbind(incidence, size - incidence) ~ period + (1 | herd), lme4::cbpp, binomial),
    glmmTMB::glmmTMB(count ~ mined + (1 | site), glmmTMB::Salamanders, family = glmmTMB::nbinom2),
    nlme::lme(distance ~ age * Sex, nlme::Orthodont, ~ age | Subject,
              weights = nlme::varIdent(form = ~ 1 | Sex)),
    nlme::gls(distance ~ age * Sex, nlme::Orthodont, correlation = nlme::corCompSymm(form = ~ 1 | Subject)),
    ordinal::clmm(rating ~ temp + contact + (1 | judge), ordinal::wine),
    ordinal::clm(rating ~ temp * contact, data = ordinal::wine),
    nnet::multinom(Species ~ Sepal.Length, iris, trace = FALSE),
    MASS::polr(rating ~ temp, ordinal::wine, Hess = TRUE),
    MASS::glm.nb(Days ~ Sex / (Age + Eth * Lrn), MASS::quine),
    glm(am ~ wt, binomial, mtcars),
    lm(log(mpg) ~ factor(cyl) * wt + poly(hp, 2), mtcars))
  for (fit in fits) {
    expect_silent(lines <- format(hierfit(fit), width = 100, language = "en"))
    expect_match(lines, "Fixed coefficients", all = FALSE)
  }
})

test_that("what befell a fit stands beside its report, and nowhere twice", {
  needs_program()
  needs("lme4")
  singular <- hierfit(suppressMessages(lme4::lmer(Yield ~ 1 + (1 | Batch), lme4::Dyestuff2)))
  expect_silent(lines <- capture.output(print(singular, language = "en")))
  text <- gsub("\\s+", " ", paste(lines, collapse = " "))
  expect_length(gregexpr("The fit is singular", text, fixed = TRUE)[[1]], 1)
  expect_match(text, "The fit is singular", fixed = TRUE)
  beside <- function(report) hierfit:::notes_beside(hierfit(lm(breaks ~ 1, warpbreaks, weights = 1:54)), report)
  expect_equal(beside("nothing"), "The records have weights.")
  for (told in c("<p>The records&nbsp;have weights.</p>", "The records \\textit{have}\nweights.")) {
    expect_length(beside(told), 0)
  }
})

test_that("without the program there are numbers, and a sentence", {
  old <- Sys.getenv(c("HIERFIT", "PATH"), names = TRUE)
  on.exit(do.call(Sys.setenv, as.list(old)))
  Sys.setenv(HIERFIT = "", PATH = "")
  expect_output(print(hierfit(fit)), "woolB.*is not found")
  expect_error(write_report(fit, "a.html"), "is not found")
  Sys.setenv(HIERFIT = file.path(tempdir(), "nothing"))
  expect_error(has_program(), "is no program")
})

test_that("broom's functions know a report", {
  needs("generics")
  x <- hierfit(fit)
  expect_equal(names(generics::tidy(x)), c("term", "estimate", "std.error", "df", "statistic", "p.value",
                                           "conf.low", "conf.high"))
  expect_same(generics::tidy(x)$conf.low, confint(fit)[, 1])
  expect_same(generics::glance(x)$BIC, BIC(fit))
})

test_that("pages of knitr get pieces", {
  needs_program()
  needs("knitr")
  skip_if_not(hierfit:::has_option("--fragment"), "this hierfit writes no pieces")
  x <- hierfit(lm(breaks ~ wool, warpbreaks, weights = rep(1:2, 27)))
  piece <- function(...) as.character(hierfit:::knit_print.hierfit(x, list(label = "a b"), ...))
  html <- piece(form = "html", tables = c("FixedCoefficients", "FixedEffects"))
  expect_match(html, "```{=html}", fixed = TRUE)
  expect_no_match(html, "<html|<script|Model summary")
  expect_match(html, "id=\"a-b-1-")
  expect_match(html, "weights")
  again <- piece(form = "html", tables = "FixedEffects")
  expect_no_match(again, "<style")
  folder <- own_folder()
  old <- setwd(folder)
  on.exit(setwd(old))
  word <- piece(form = "docx", tables = c("FixedCoefficients", "effectDiagram"))
  expect_match(word, "<w:tbl>", fixed = TRUE)
  expect_match(word, "!\\[[^]]+\\]\\(figure/a b-3/[^)]+\\.png\\)")
  latex <- hierfit:::knit_print.hierfit(x, list(label = "c"), form = "latex", tables = "FixedEffects")
  expect_match(as.character(latex), "\\toprule", fixed = TRUE)
  expect_true("booktabs" %in% vapply(attr(latex, "knit_meta"), `[[`, "", "name"))
})
