# Reports in R Markdown.

#' A report in a document of knitr
#'
#' Gives a piece of the page in HTML, real tables in Word, booktabs tables in LaTeX and PDF, and
#' Markdown else. Charts come along, below the tables in Word.
#'
#' @param x what [hierfit()] gives.
#' @param options the options of the chunk, which knitr hands over.
#' @param tables the tables and figures that are wanted, by the names that [as.data.frame.hierfit()]
#'   has in its column `subtype`; absent: all.
#' @param style,language as in [write_report()].
#' @param form "html", "latex", "docx" or "markdown"; absent: that of the document.
#' @param ... not used.
#' @return what knitr prints as it is.
#' @exportS3Method knitr::knit_print
knit_print.hierfit <- function(x, options = knitr::opts_current$get(), tables = NULL,
                               style = NULL, language = NULL, form = NULL, ...) {
  if (!has_option("--fragment")) {
    stop_for(if (has_program()) "this hierfit writes no pieces of pages; install a newer one" else no_program)
  }
  if (is.null(form)) form <- knit_form()
  label <- if (is.null(options$label)) "hierfit" else gsub("[^A-Za-z0-9]+", "-", options$label)
  count <- c(knitr::opts_knit$get("hierfit.count"), 0)[1] + 1
  knitr::opts_knit$set(hierfit.count = count)
  arguments <- c(display_options(style, language),
                 if (length(tables)) c("--tables", paste(tables, collapse = ",")))
  piece <- switch(
    form,
    html = knit_html(x, c(arguments, "--id-prefix", sprintf("%s-%d-", label, count),
                          if (count > 1) "--no-styles")),
    latex = knit_latex(x, arguments, knit_folder(options, count)),
    docx = knit_word(x, arguments, knit_folder(options, count)),
    markdown = knit_markdown(x, arguments, knit_folder(options, count)))
  notes <- notes_beside(x, piece$text)
  if (length(notes)) piece$text <- c(piece$text, "", paste("*Note.*", notes, collapse = "\n\n"))
  knitr::asis_output(paste(c("", piece$text, ""), collapse = "\n"), meta = piece$meta)
}

knit_form <- function() {
  to <- knitr::pandoc_to()
  if (identical(to, "docx")) "docx"
  else if (knitr::is_latex_output()) "latex"
  else if (knitr::is_html_output(excludes = c("markdown", "gfm", "commonmark", "epub", "epub2", "epub3")))
    "html"
  else "markdown"
}

# Where the charts of a chunk lie, as knitr has it for figures.
knit_folder <- function(options, count) {
  path <- if (is.null(options$fig.path)) "figure/" else options$fig.path
  sprintf("%s%s-%d", path, if (is.null(options$label)) "hierfit" else options$label, count)
}

raw_block <- function(lines, form) c(sprintf("```{=%s}", form), lines, "```")

fragment <- function(x, form, arguments) {
  run_on(x, c("--fragment", "--format", form, "--output", "-", arguments), warns = FALSE)
}

knit_html <- function(x, arguments) {
  list(text = raw_block(fragment(x, "html", arguments), "html"), meta = NULL)
}

latex_packages <- c("array", "booktabs", "longtable", "pdflscape", "graphicx")

knit_latex <- function(x, arguments, folder) {
  lines <- fragment(x, "latex", c(arguments, "--charts", folder, "--chart-format", "pdf"))
  meta <- lapply(latex_packages, function(name) {
    structure(list(name = name, options = NULL, extra_lines = NULL), class = "latex_dependency")
  })
  set <- sprintf("\\def\\chartfolder{%s}", folder)
  list(text = raw_block(c("{", set, lines, "}"), "latex"), meta = meta)
}

knit_word <- function(x, arguments, folder) {
  lines <- fragment(x, "docx", c(arguments, "--charts", folder, "--chart-format", "png"))
  list(text = c(raw_block(lines, "openxml"), "", chart_images(folder)), meta = NULL)
}

knit_markdown <- function(x, arguments, folder) {
  lines <- run_on(x, c("--format", "markdown", "--output", "-", arguments, "--charts", folder,
                       "--chart-format", "png"), warns = FALSE)
  lines <- lines[!grepl("^# ", lines)]  # the page has a title of its own
  list(text = c(lines, "", chart_images(folder)), meta = NULL)
}

# The charts of a folder, which have their titles on them; "01-predicted-by-observed.png" is told as
# "Predicted by observed" to those who do not see it. The backslash keeps pandoc from captions.
chart_images <- function(folder) {
  files <- sort(list.files(folder, "\\.png$"))
  names <- gsub("-", " ", sub("^[0-9]+-(.*)\\.png$", "\\1", files))
  if (length(files)) {
    paste0("![", toupper(substr(names, 1, 1)), substr(names, 2, nchar(names)), "](",
           file.path(folder, files), ")\\\n")
  }
}
