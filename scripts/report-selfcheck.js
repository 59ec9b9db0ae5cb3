// Run inside the report of scripts/report-check.sh after the page's own
// script: checks the charts, the record filter and that no user name ran as
// script, and writes the verdict into a new pre element, id "selfcheck".
// No closing script tag may appear in this text: it is put inline.
window.addEventListener('load', function () {
  setTimeout(function () {
    var problems = [];
    var expected = ['auths', 'rate', 'causes-dot1x', 'causes-mab', 'causes-webauth',
                    'steps-dot1x', 'steps-mab', 'steps-webauth', 'online', 'cpp', 'escapes'];
    expected.forEach(function (id) {
      if (!document.getElementById('d0-' + id)) problems.push('chart d0-' + id + ' missing');
    });
    var charts = document.querySelectorAll('figure.chart');
    charts.forEach(function (figure) {
      var svg = figure.querySelector('svg');
      var marks = figure.querySelectorAll('svg .mark');
      if (!svg) return problems.push(figure.id + ': no svg');
      var box = svg.getBoundingClientRect();
      if (box.width < 300 || box.height < 40) problems.push(figure.id + ': drawn too small');
      if (marks.length === 0) problems.push(figure.id + ': nothing drawn');
      var sized = Array.prototype.some.call(marks, function (m) {
        var b = m.getBoundingClientRect();
        return b.width > 0 && b.height > 0;
      });
      if (!sized) problems.push(figure.id + ': marks have no size');
      if (figure.querySelectorAll('.legend span i').length === 0) problems.push(figure.id + ': no legend');
    });
    if (document.querySelectorAll('#wrong li').length < 3) problems.push('fewer than 3 episodes');

    var form = document.querySelector('form.filter');
    var table = document.getElementById(form.getAttribute('data-table'));
    var rows = Array.prototype.slice.call(table.tBodies[0].rows);
    function filter(name, value) {
      form.querySelectorAll('input').forEach(function (i) { i.value = ''; });
      var input = form.querySelector('input[name=' + name + ']');
      input.value = value;
      input.dispatchEvent(new Event('input', {bubbles: true}));
      return rows.filter(function (r) { return !r.hidden; });
    }
    var user = rows[rows.length - 1].cells[2].textContent;
    var byUser = filter('user', user);
    if (byUser.length === 0 || byUser.length === rows.length) {
      problems.push('user filter "' + user + '" shows ' + byUser.length + ' of ' + rows.length);
    }
    byUser.forEach(function (r) {
      if (r.cells[2].textContent.indexOf(user) < 0) problems.push('user filter kept ' + r.cells[2].textContent);
    });
    var byCause = filter('cause', 'aaa reject');
    if (byCause.length === 0 || byCause.some(function (r) { return r.cells[6].textContent !== 'aaa reject'; })) {
      problems.push('cause filter shows ' + byCause.length + ' rows');
    }
    var from = rows[Math.floor(rows.length / 2)].cells[0].textContent;
    var byTime = filter('from', from);
    if (byTime.length === 0 || byTime.length === rows.length ||
        byTime.some(function (r) { return r.cells[0].textContent < from; })) {
      problems.push('time filter from ' + from + ' shows ' + byTime.length + ' rows');
    }
    if (!/of \d+ records shown/.test(form.querySelector('.count').textContent)) {
      problems.push('no record count');
    }
    filter('user', '');

    if (window.__pwned !== undefined) problems.push('a user name ran as script: ' + window.__pwned);
    var names = Array.prototype.map.call(document.querySelectorAll('table.records td:nth-child(3)'),
                                         function (td) { return td.textContent; });
    ['<script>window.__pwned=1<' + '/script>', '<img/src=x/onerror=window.__pwned=2>'].forEach(function (n) {
      if (names.indexOf(n) < 0) problems.push('hostile name not shown as text: ' + n);
    });
    if (document.querySelectorAll('img, table.records table').length) problems.push('markup from a name');

    var pre = document.createElement('pre');
    pre.id = 'selfcheck';
    var verdict = problems.length ? 'FAIL\n' + problems.join('\n')
                                  : 'PASS ' + charts.length + ' charts, ' + rows.length + ' records';
    pre.textContent = 'SELFCHECK ' + verdict;
    document.body.appendChild(pre);
  }, 300);
});
