"""One self-contained HTML page with every generated table of a file: for
each node with a model, its expressions and a picture of its table (a heat
map, or the distribution's bars for a table without parents), embedded as
a PNG data URI, so that the page can be shared as one file."""
import base64
import html
import io

from matplotlib.figure import Figure

from . import plot
from .domain import Domain
from .errors import Error

STYLE = """
body { font-family: sans-serif; max-width: 60em; margin: 2em auto; color: #222; }
section { border-top: 1px solid #ccc; padding: 1em 0; }
pre { background: #f4f4f4; padding: 0.5em; overflow-x: auto; }
.failure { color: #a00; }
img { max-width: 100%; }
"""

# Counts the pictures the browser could show, once the page has loaded, and
# says so at the top of the page.
SCRIPT = """
window.addEventListener('load', function () {
  var images = document.querySelectorAll('img');
  var shown = 0;
  images.forEach(function (image) { if (image.complete && image.naturalWidth > 0) shown++; });
  var line = document.getElementById('images-shown');
  line.textContent = shown + ' of ' + images.length + ' pictures shown';
  line.setAttribute('data-count', String(shown));
});
"""


def _picture(domain, node):
    figure = Figure(figsize=(7, 4.5), layout="constrained")
    ax = figure.add_subplot()
    table = node.table
    parents = table.nodes[:-1] if table.kind != "utility" else table.nodes
    if not parents and table.kind != "utility":
        try:
            plot.distribution(domain, node, density=node.type == "interval", ax=ax)
        except (ValueError, Error):  # no density from this model: the bars alone
            ax.clear()
            plot.distribution(domain, node, ax=ax)
    else:
        plot.table(domain, node, ax=ax)
    buffer = io.BytesIO()
    figure.savefig(buffer, format="png", dpi=90)
    return base64.b64encode(buffer.getvalue()).decode("ascii")


def _model_text(node):
    model = node.model
    lines = [f"model nodes: {', '.join(model.nodes) or '(none)'}"]
    for i, expression in enumerate(model.expressions):
        lines.append(f"[{i}] {expression if expression is not None else '(missing)'}")
    return "\n".join(lines)


def write(path, output, propagate=False):
    """Loads the file at `path`, generates every table of a model in node
    order, and writes the page to `output`.  `propagate`: compile the domain
    and propagate the file's evidence first, so that tables read results of
    inference (a file that states results refuses it).  A table that cannot
    be generated is shown with its error, and the others still are.  Returns
    (tables drawn, failures)."""
    escape = html.escape
    with Domain.load(path) as domain:
        if propagate:
            if domain.is_compiled:
                raise ValueError(f"{path}: --propagate cannot be used with an inference block, "
                                 "which states the results")
            domain.compile()
        sections = []
        drawn = 0
        failures = []
        for node in domain.generated_nodes():
            heading = f"<h2>{escape(node.name)} <small>({escape(node.category)}, {escape(node.type)})</small></h2>"
            code = f"<pre>{escape(_model_text(node))}</pre>"
            try:
                node.generate()
                picture = _picture(domain, node)
            except Error as error:
                failures.append(error)
                sections.append(f"<section>{heading}{code}<p class=\"failure\">{escape(str(error))}</p></section>")
                continue
            drawn += 1
            sections.append(f"<section>{heading}{code}<img alt=\"{escape(node.name)}\" "
                            f"src=\"data:image/png;base64,{picture}\"></section>")
        title = f"{domain.name}: generated tables"
        page = (f"<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                f"<title>{escape(title)}</title>\n<style>{STYLE}</style>\n</head>\n<body>\n"
                f"<h1>{escape(title)}</h1>\n<p>{escape(str(path))}: {drawn} tables"
                f"{f', {len(failures)} failed' if failures else ''}.</p>\n"
                f"<p id=\"images-shown\"></p>\n" + "\n".join(sections) +
                f"\n<script>{SCRIPT}</script>\n</body>\n</html>\n")
    with open(output, "w", encoding="utf-8") as f:
        f.write(page)
    return drawn, failures
