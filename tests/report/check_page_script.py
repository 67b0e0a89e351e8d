#!/usr/bin/env python3
"""Uses a page as a reader does: copies a table, changes its decimals, filters the contents, moves on.

usage: check_page_script.py PAGE.html, the one of show_sample procedure
"""

import pathlib
import re
import sys
import tempfile

from check_chart_page import Browser

SCRIPT = r"""
const table = [...document.querySelectorAll('.scroll > table')]
  .find((each) => each.caption.innerText.includes(arguments[0]));
const tools = table.parentElement.nextElementSibling;
const press = (action) => tools.querySelector(`[data-do=${action}]`).click();
const cells = () => [...table.querySelectorAll('td[data-value]')].map((cell) => cell.innerText).join(' ');
const marks = () => [...table.querySelectorAll('tbody tr')].map((row) => {
  // Where the decimal mark of the first number stands.
  const cell = row.querySelector('td[data-value]');
  const range = document.createRange();
  const at = cell.firstChild.data.search(/\.|$/);
  range.setStart(cell.firstChild, 0);
  range.setEnd(cell.firstChild, at);
  return Math.round(range.getBoundingClientRect().right);
});
const copied = {};
const keep = DataTransfer.prototype.setData;
DataTransfer.prototype.setData = function (type, text) { copied[type] = text; keep.call(this, type, text); };
const result = {given: cells()};
for (const [name, presses] of Object.entries({more: ['more', 'more'], fewer: ['given', 'fewer', 'fewer', 'fewer'],
                                              again: ['given']})) {
  presses.forEach(press);
  result[name] = cells();
  result[`${name} marks`] = new Set(marks()).size;
}
tools.querySelector('[data-do=table]').id = 'copy';
window.copied = copied;
const field = document.getElementById('filter');
field.hidden = false;
field.value = arguments[1];
field.dispatchEvent(new Event('input'));
result.entries = [...document.querySelectorAll('nav li > a')].filter((a) => a.checkVisibility()).map((a) => a.innerText);
scrollTo(0, table.getBoundingClientRect().top + scrollY - 50);
return new Promise((done) => setTimeout(() => done({...result,
  place: document.querySelector('nav [aria-current]')?.hash === `#${table.caption.id}`}), 300));
"""

GIVEN = ("251.405 6.825 36.836 0.171 238.028 264.782 10.467 1.546 6.770 0.039 7.437 13.497 "
         "\u22122.340E\u22125 0.018 \u22120.001 <0.001 \u22120.035 0.035 0\nb")
EXPECTED = {
    "given": GIVEN,
    "more": "251.40500 6.82500 36.83590 0.17062 238.02800 264.78200 10.46700 1.54600 6.77038 0.03865 "
            "7.43684 13.49716 \u22122.34000E\u22125 0.01800 \u22120.00130 0.00045 \u22120.03530 0.03526 0\nb",
    "fewer": "251 7 37 0.2 238 265 10 2 7 <0.1 7 13 \u22122E\u22125 0.02 \u22120.001 <0.1 \u22120.04 0.04 0\nb",
    "again": GIVEN,
    # All decimal marks of a column stand beneath one another.
    "more marks": 1,
    "fewer marks": 1,
    "again marks": 1,
    "entries": ["Random Effect Covariances", "Table 7 Random Effect Block 1"],
    "place": True,
    "text/plain": """\
Model Term\tCoefficient\tStd. Error\tt\tSig.\t95% Confidence Interval\t
\t\t\t\t\tLower\tUpper
Intercept\t251.405\t6.825\t36.83589743589744\t0.170625\t238.028\t264.782
days\t10.467\t1.546\t6.770375161707633\t0.038650000000000004\t7.43684\t13.497160000000001
group=1\t-2.34e-05\t0.018\t-0.0013000000000000002\t0.00045\t-0.0353034\t0.0352566
group=2\t0\t\t\t\t\t
""",
    "head": '<thead><tr><th rowspan="2">Model Term</th><th rowspan="2">Coefficient</th>'
            '<th rowspan="2">Std. Error</th><th rowspan="2">t</th><th rowspan="2">Sig.</th>'
            '<th colspan="2">95% Confidence Interval</th></tr><tr><th>Lower</th><th>Upper</th></tr></thead>',
    "number": '<td nowrap sdval="0.00045">&#60;0.001</td>',
    "note": "<p><sup>b</sup> This coefficient is set to zero because it is redundant.</p>",
}


def main():
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
        browser = Browser(folder)
        try:
            browser.open(pathlib.Path(sys.argv[1]), 1280)
            found = browser.run(SCRIPT, "Fixed Coefficients", "random covariances")
            button = browser.call("/element", {"using": "css selector", "value": "#copy"})
            browser.call(f"/element/{next(iter(button.values()))}/click", {})
            found |= browser.run("return window.copied")
        finally:
            browser.close()
    markup = re.sub(' (style|cellspacing)="[^"]*"', "", found["text/html"])
    found["head"] = re.search("<thead>.*</thead>", markup)[0]
    found |= {part: EXPECTED[part] for part in ("number", "note") if EXPECTED[part] in markup}
    wrong = {name: found.get(name) for name in EXPECTED if found.get(name) != EXPECTED[name]}
    for name, value in wrong.items():
        print(f"{name}: {value!r}\n  in place of {EXPECTED[name]!r}")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
