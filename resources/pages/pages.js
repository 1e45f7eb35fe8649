// The script of the detail pages: the calls the page makes go to the program's bridge object
// (registered as "bridge" on the page's web channel); the program calls addPieValues and
// addChartValues, and redraws the history through the bridge's historyChanged signal.
var bridge = null;

if (typeof QWebChannel !== "undefined" && typeof qt !== "undefined") {
    new QWebChannel(qt.webChannelTransport, function (channel) {
        bridge = channel.objects.bridge;
        if (bridge && bridge.historyChanged) {
            bridge.historyChanged.connect(function (html) {
                var events = document.getElementById("events");
                if (events)
                    events.innerHTML = html;
            });
        }
        if (bridge && bridge.viewChanged)
            bridge.viewChanged.connect(showView);
        if (bridge && bridge.chartChanged)
            bridge.chartChanged.connect(addChartValues);
    });
}

function call(name, args) {
    if (bridge && bridge[name])
        bridge[name].apply(bridge, args);
}

function showChartSettings() { call("showChartSettings", []); }
function showDocumentPayments() { call("showDocumentPayments", []); }
function filterEventsByType(type) { call("filterEventsByType", [type]); }
function changeView(view) { call("changeView", [view]); }
function sendEmail(address) { call("sendEmail", [address]); }
function clientRating(rating) { call("clientRating", [rating]); }
function clientStatus(status) { call("clientStatus", [status]); }
function done(identifier) { call("done", [identifier]); }
function openWarehouse() { call("openWarehouse", []); }
function moreRow(count) { call("moreRow", [count]); }

function showView(view) {
    var views = ["events_view", "chart_view"];
    for (var i = 0; i < views.length; ++i) {
        var element = document.getElementById(views[i]);
        if (element)
            element.style.display = views[i] === view ? "" : "none";
    }
}

var svgNamespace = "http://www.w3.org/2000/svg";

function svgElement(name, attributes) {
    var element = document.createElementNS(svgNamespace, name);
    for (var key in attributes)
        element.setAttribute(key, attributes[key]);
    return element;
}

// The paid and unpaid parts of a document's total as a pie: values [paid, unpaid] and their
// labels.
function addPieValues(values, labels) {
    var pie = document.getElementById("pie");
    if (!pie)
        return;
    var colours = ["#0acd8c", "#d10103"];
    var total = 0;
    for (var i = 0; i < values.length; ++i)
        total += Math.max(values[i], 0);
    var svg = svgElement("svg", {width: 120, height: 120, viewBox: "-1 -1 2 2"});
    if (total <= 0) {
        svg.appendChild(svgElement("circle", {cx: 0, cy: 0, r: 1, fill: "#e4e4e4"}));
    } else {
        var angle = -Math.PI / 2;
        for (var j = 0; j < values.length; ++j) {
            var share = Math.max(values[j], 0) / total;
            if (share <= 0)
                continue;
            if (share >= 1) {
                svg.appendChild(svgElement("circle", {cx: 0, cy: 0, r: 1, fill: colours[j % 2]}));
                break;
            }
            var end = angle + share * 2 * Math.PI;
            var path = "M 0 0 L " + Math.cos(angle) + " " + Math.sin(angle) + " A 1 1 0 " +
                       (share > 0.5 ? 1 : 0) + " 1 " + Math.cos(end) + " " + Math.sin(end) + " Z";
            var slice = svgElement("path", {d: path, fill: colours[j % 2]});
            var title = svgElement("title", {});
            title.textContent = labels[j];
            slice.appendChild(title);
            svg.appendChild(slice);
            angle = end;
        }
    }
    pie.innerHTML = "";
    pie.appendChild(svg);
}

// The sums of the chart view as bars, one per period.
function addChartValues(labels, values) {
    var chart = document.getElementById("chart");
    if (!chart)
        return;
    var width = 40 * Math.max(labels.length, 1), height = 160, top = 0;
    for (var i = 0; i < values.length; ++i)
        top = Math.max(top, values[i]);
    var svg = svgElement("svg", {width: width, height: height + 30});
    for (var j = 0; j < values.length; ++j) {
        var barHeight = top > 0 ? Math.max(values[j], 0) / top * height : 0;
        svg.appendChild(svgElement("rect", {x: j * 40 + 8, y: height - barHeight, width: 24,
                                            height: barHeight, fill: "#1f5fa8"}));
        var label = svgElement("text", {x: j * 40 + 20, y: height + 16, "text-anchor": "middle",
                                        "font-size": 10});
        label.textContent = labels[j];
        svg.appendChild(label);
    }
    chart.innerHTML = "";
    chart.appendChild(svg);
}

// A right click on a link shows no menu; elsewhere the view's own menu stays.
document.addEventListener("contextmenu", function (event) {
    for (var node = event.target; node; node = node.parentNode) {
        if (node.tagName === "A") {
            event.preventDefault();
            return;
        }
    }
});
