# vel export: what a format cannot carry is refused, naming the node and the
# state; --chance-only leaves out what is not a chance or decision node.
$ export {data}/export/decisions.yaml --to xmlbif
= 2
! vel: {data}/export/decisions.yaml: node Level: a continuous node cannot be written in XMLBIF (--chance-only leaves it out)

$ export {data}/export/labels.yaml --to bif
= 2
! vel: {data}/export/labels.yaml: node A, state 'd(1)': a BIF state name cannot be empty or contain blanks or any of ,;{}()[]|"

$ export {data}/export/labels.yaml --to xmlbif
= 2
! vel: {data}/export/labels.yaml: node A, state ' a': XMLBIF cannot carry a state name that starts or ends with a blank, which XMLBIF readers drop

$ export {data}/export/twice.yaml --to bif
= 2
! vel: {data}/export/twice.yaml: node T, state 'x': appears twice; BIF rows name states, so they must differ

$ export {data}/export/decisions.yaml --to uai --chance-only
> BAYES
> 1
> 2
> 1
> 1 0
>
> 2
>  0.25 0.75

$ export {data}/export/decisions.yaml --to bif --chance-only
> network decisions {
> }
> variable Pump {
>   type discrete [ 2 ] { false, true };
> }
> probability ( Pump ) {
>   table 0.25, 0.75;
> }

$ export {data}/export/labels.yaml --to uai -o /nonexistent/a.uai
= 2
! vel: cannot write '/nonexistent/a.uai': No such file or directory

$ export {data}/two_failures.yaml --to pdf
= 2
! --to: pdf not in {bif,xmlbif,uai}
! Run with --help for more information.
