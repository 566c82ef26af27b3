"""python3 -m vel report FILE -o OUT.html [--propagate]"""
import argparse
import sys

from .errors import Error, LoadError


def main(argv=None):
    parser = argparse.ArgumentParser(prog="python3 -m vel")
    commands = parser.add_subparsers(dest="command", required=True)
    report = commands.add_parser("report", help="write every generated table of FILE into one HTML page")
    report.add_argument("file", metavar="FILE", help="a model file or a BIF/XMLBIF network")
    report.add_argument("-o", "--output", required=True, metavar="OUT", help="the HTML page to write")
    report.add_argument("--propagate", action="store_true",
                        help="compile and propagate the file's evidence first, for tables that read results")
    arguments = parser.parse_args(argv)

    import matplotlib
    matplotlib.use("Agg")
    from . import report as report_module
    try:
        drawn, failures = report_module.write(arguments.file, arguments.output, arguments.propagate)
    except (LoadError, ValueError) as error:
        print(error, file=sys.stderr)
        return 2
    except Error as error:  # compilation failed
        print(f"vel: {error}", file=sys.stderr)
        return 1
    except OSError as error:
        print(f"python3 -m vel: {error}", file=sys.stderr)
        return 2
    for failure in failures:
        print(f"vel: {failure}", file=sys.stderr)
    print(f"{arguments.output}: {drawn} tables" + (f", {len(failures)} failed" if failures else ""))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
