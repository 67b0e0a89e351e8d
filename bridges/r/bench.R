# Times of extraction and report of the three examples, in a warm session.
#   HIERFIT=build/bin/hierfit Rscript bridges/r/bench.R
# hierfit is taken from the library, else from the sources beside this file.
if (!requireNamespace("hierfit", quietly = TRUE)) {
  here <- dirname(sub("^--file=", "", grep("^--file=", commandArgs(), value = TRUE)))
  pkgload::load_all(file.path(here, "hierfit"), quiet = TRUE)
}
library(hierfit)
suppressPackageStartupMessages({
  library(lme4)
  library(glmmTMB)
})

examples <- list(
  sleepstudy = list(lmerTest::lmer(Reaction ~ Days + (Days | Subject), sleepstudy)),
  cbpp = list(glmer(cbind(incidence, size - incidence) ~ period + (1 | herd), cbpp, binomial),
              means = ~ period, contrasts = "simple", df = "residual"),
  salamanders = list(glmmTMB(count ~ spp * mined + (1 | site), Salamanders, family = nbinom2),
                     means = list(~ spp | mined, ~ mined | spp, ~ mined), df = "residual"))

seconds <- function(task) system.time(task())[["elapsed"]]
file <- tempfile(fileext = ".html")
times <- t(vapply(examples, function(example) {
  extract <- function() do.call(hierfit, example)
  x <- extract()
  write_report(x, file)
  runs <- replicate(5, c(extract = seconds(extract), report = seconds(function() write_report(x, file))))
  apply(runs, 1, stats::median)
}, c(extract = 0, report = 0)))
times <- cbind(times, both = rowSums(times))
print(round(times, 3))
if (any(times[, "both"] > 1.5)) stop("an example takes more than 1.5 seconds")
