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

// Charts are drawn by Chart.js: the system's copy, built into the pages' resources as
// chart.min.js. Each container holds one chart, drawn anew with each call.
var charts = {};

function drawChart(containerId, width, height, config) {
    var container = document.getElementById(containerId);
    if (!container || typeof Chart === "undefined")
        return;
    if (charts[containerId])
        charts[containerId].destroy();
    container.innerHTML = "";
    var canvas = document.createElement("canvas");
    canvas.width = width;
    canvas.height = height;
    container.appendChild(canvas);
    config.options = config.options || {};
    config.options.responsive = false;
    config.options.animation = false;
    config.options.plugins = {legend: {display: false}};
    charts[containerId] = new Chart(canvas, config);
}

// The paid and unpaid parts of a document's total as a pie: values [paid, unpaid] and their
// labels. A document of nothing shows a grey disc.
function addPieValues(values, labels) {
    var parts = values.map(function (value) { return Math.max(value, 0); });
    var empty = parts.every(function (value) { return value <= 0; });
    drawChart("pie", 120, 120, {
        type: "pie",
        data: {
            labels: empty ? [""] : labels,
            datasets: [{data: empty ? [1] : parts, borderWidth: 0,
                        backgroundColor: empty ? ["#e4e4e4"] : ["#0acd8c", "#d10103"]}]
        },
        options: empty ? {plugins: {tooltip: {enabled: false}}} : {}
    });
}

// The sums of the chart view as bars, one per period.
function addChartValues(labels, values) {
    drawChart("chart", Math.max(40 * labels.length, 320), 180, {
        type: "bar",
        data: {labels: labels, datasets: [{data: values, backgroundColor: "#1f5fa8"}]},
        options: {scales: {y: {beginAtZero: true}}}
    });
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
