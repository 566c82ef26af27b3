# vel generate: selection, output formats and exit statuses.

# Every node with a model in file order up to the failure; tables generated
# before it stay in the document.
$ generate {data}/two_failures.yaml --format json --no-log
= 1
> {
>   "domain": "rainy",
>   "tables": [
>     {"node": "Rain", "table": "conditional probability",
>      "nodes": ["Cloudy", "Rain"],
>      "states": [["false", "true"], ["false", "true"]],
>      "shape": [2, 2],
>      "data": [0.9, 0.1, 0.3, 0.7]}
>   ],
>   "error": {"code": 34, "name": "vel_error_invalid_expression", "node": "Umbrella", "message": "Invalid expression at index 1"}
> }
! vel: Umbrella: error 34 (vel_error_invalid_expression): Invalid expression at index 1

# Named nodes in the order given, each once; a node the library will not
# generate is its usage error, with the reason.
$ generate {data}/two_failures.yaml --node Rain --node Rain --node Cloudy --format csv --no-log
= 1
> # Rain (conditional probability)
> Cloudy,false,true
> false,0.9,0.1
> true,0.3,0.7
! vel: Cloudy: error 1 (vel_error_usage): Cloudy has no model

$ generate {data}/function_node.yaml --node Volume --no-log
= 1
! vel: Volume: error 1 (vel_error_usage): Volume is a real-valued function node and has no table

$ generate {data}/function_node.yaml --format json --no-log
> {
>   "domain": "tank",
>   "tables": [],
>   "error": null
> }

# --all adds the literal tables in file order.
$ generate {data}/two_failures.yaml --all --node Rain
= 2
! --node excludes --all
! Run with --help for more information.

$ generate {data}/two_failures.yaml --all --format csv --no-log
= 1
> # Cloudy (conditional probability)
> false,true
> 0.6,0.4
>
> # Rain (conditional probability)
> Cloudy,false,true
> false,0.9,0.1
> true,0.3,0.7
! vel: Umbrella: error 34 (vel_error_invalid_expression): Invalid expression at index 1

# Usage errors before anything is generated.
$ generate {data}/two_failures.yaml --node Rain --node Nope --log -
= 2
! vel: {data}/two_failures.yaml: no node named 'Nope'

$ generate {data}/two_failures.yaml --log ''
= 2
! vel: cannot open log file '': No such file or directory

$ generate {data}/two_failures.yaml --output-dir x
= 2
! --output-dir requires --format
! Run with --help for more information.

$ generate /nonexistent/m.yaml --format json
= 2
> {
>   "domain": null,
>   "tables": [],
>   "error": {"code": null, "name": "load_error", "node": null, "message": "/nonexistent/m.yaml: No such file or directory"}
> }
! /nonexistent/m.yaml: No such file or directory
