# Finds and runs the program.

no_program <- paste("The program hierfit is not found. Install it, or say where it is:",
                    "Sys.setenv(HIERFIT = \"/path/to/hierfit\").")

program <- function() {
  named <- Sys.getenv("HIERFIT")
  if (nzchar(named)) {
    if (file.access(named, 1) != 0) stop_for("HIERFIT is ", named, ", which is no program")
    return(named)
  }
  unname(Sys.which("hierfit"))
}

#' Whether the program hierfit is there
#'
#' It is that of the environment variable `HIERFIT`, else the one on the path.
#' @return TRUE or FALSE.
#' @export
has_program <- function() nzchar(program())

# Which options the program knows.
has_option <- function(option) {
  has_program() && any(grepl(option, run(program(), "--help")$output, fixed = TRUE))
}

# Runs a command; both streams as lines.
run <- function(command, arguments) {
  errors <- tempfile("hierfit")
  on.exit(unlink(errors))
  output <- suppressWarnings(system2(command, shQuote(arguments), stdout = TRUE, stderr = errors))
  Encoding(output) <- "UTF-8"
  list(output = output, status = attr(output, "status"), errors = readLines(errors, warn = FALSE))
}

# Runs the program on a fit. The document, which holds records, lives in a folder of this session for
# as long. What is shown says itself what speaks against it; else that becomes a warning.
run_on <- function(x, arguments, warns = TRUE) {
  if (!has_program()) stop_for(no_program)
  x <- as_hierfit(x)
  folder <- tempfile("hierfit")
  dir.create(folder, mode = "0700")
  on.exit(unlink(folder, recursive = TRUE))
  document <- file.path(folder, "fit.json")
  write_json(x$document, document)
  result <- run(program(), c(arguments, document))
  messages <- gsub(document, "fit.json", sub("^hierfit: ", "", result$errors), fixed = TRUE)
  if (!is.null(result$status)) stop_for(paste(messages, collapse = "\n"))
  odd <- sub("^fit[.]json: warning: ", "", grep("warning: ", messages, value = TRUE))
  if (warns && length(odd)) warning(paste(odd, collapse = "\n"), call. = FALSE)
  as.vector(result$output)
}

# Numbers as JSON in all their digits, which come through to the last bit; jsonlite has 15.
with_digits <- function(member) {
  if (is.list(member)) return(lapply(member, with_digits))
  if (!is.numeric(member)) return(member)
  text <- ifelse(is.finite(member), sprintf("%.17g", as.numeric(member)), "null")
  is_array <- inherits(member, "AsIs") || length(member) != 1
  structure(if (is_array) sprintf("[%s]", paste(text, collapse = ",")) else text, class = "json")
}

write_json <- function(document, file) {
  text <- jsonlite::toJSON(with_digits(document), auto_unbox = TRUE, json_verbatim = TRUE, na = "null")
  connection <- file(file, "wb")
  on.exit(close(connection))
  writeLines(enc2utf8(text), connection, useBytes = TRUE)
}
